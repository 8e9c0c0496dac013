#pragma once

#include <optional>
#include <string>
#include <vector>

#include <opencv2/core.hpp>
#include <velscroll/report/ReportedCapture.h>

#include <VelScrollingCapture/session/SessionResult.h>
#include <VelScrollingCapture/session/SessionSettings.h>

namespace ScrollingCapture::Program {

/// The seconds that each stage of the work took.
struct StageSeconds {
  double reading = 0;
  double detection = 0;
  double composing = 0;
  double writing = 0;
};

/// A part of the picture as it was written.
struct ReportedPart {
  std::string file;
  cv::Size size;
  std::vector<std::string> pieces;  ///< the files it was cut into; only itself unless it was cut
};

/// All that the report tells.
struct ReportContent {
  std::vector<ReportedPart> parts;
  SessionSettings settings;
  std::optional<FixedBorders> borders;
  std::vector<ReportedCapture> captures;
  std::vector<std::string> warnings;  ///< the program's own
  std::vector<std::string> remarks;   ///< the library's
  StageSeconds seconds;
};

/// The report as JSON text, with an end of line. docs/report.md tells what the fields mean.
std::string ReportText(const ReportContent& content);

}  // namespace ScrollingCapture::Program
