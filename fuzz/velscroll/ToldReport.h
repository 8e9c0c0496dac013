#pragma once

#include <string>
#include <vector>

#include <opencv2/core.hpp>

namespace ScrollingCapture::Fuzzing {

/// What a report tells of one capture.
struct ToldCapture {
  std::string file;
  int row = 0;
  bool hasJoin = false;
};

/// What a report tells of a part of the picture.
struct ToldPart {
  std::string file;
  cv::Size size;
  std::vector<std::string> pieces;  ///< empty when it was not cut
};

/// What a reader of a report finds in it.
struct ToldReport {
  std::vector<ToldPart> parts;
  std::vector<ToldCapture> captures;
  size_t warnings = 0;
};

/// Throws an exception of the JSON reader when the text is no report.
ToldReport ReadReport(const std::string& text);

}  // namespace ScrollingCapture::Fuzzing
