#pragma once

#include <optional>
#include <string>
#include <vector>

#include <opencv2/core.hpp>
#include <velscroll/arguments/Arguments.h>
#include <velscroll/report/CaptureOutcome.h>
#include <velscroll/stitch/RecordedBorders.h>

namespace ScrollingCapture::Program {

/// The seconds that each stage of the work took.
struct StageSeconds {
  double reading = 0;
  double detection = 0;
  double composing = 0;
  double writing = 0;
};

/// All that the report tells.
struct ReportContent {
  cv::Size resultSize;
  std::optional<Borders> borders;
  std::vector<CaptureOutcome> captures;
  std::vector<std::string> warnings;  ///< the program's own
  std::vector<std::string> remarks;   ///< the library's
  StageSeconds seconds;
};

/// The report as JSON text, with an end of line. docs/report.md tells what the fields mean.
std::string ReportText(const Arguments& arguments, const ReportContent& content);

}  // namespace ScrollingCapture::Program
