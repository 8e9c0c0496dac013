#pragma once

#include <string>
#include <vector>

#include <opencv2/core.hpp>

namespace ScrollingCapture::Fuzzing {

/// What a report tells of one capture.
struct ToldCapture {
  std::string file;
  int row = 0;
  bool hasOverlap = false;
};

/// What a reader of a report finds in it.
struct ToldReport {
  std::string file;
  cv::Size size;
  std::vector<ToldCapture> captures;
  size_t warnings = 0;
};

/// Throws an exception of the JSON reader when the text is no report.
ToldReport ReadReport(const std::string& text);

}  // namespace ScrollingCapture::Fuzzing
