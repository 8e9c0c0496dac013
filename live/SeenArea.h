#pragma once

#include <vector>

#include <opencv2/core.hpp>

namespace ScrollingCapture::Live {

/// What of the content has been seen, as the union of rectangles. Columns and rows may be negative.
class SeenArea {
 public:
  void Add(const cv::Rect& rectangle);

  /// Whether every pixel of the rectangle has been seen.
  bool Covers(const cv::Rect& rectangle) const;

 private:
  std::vector<cv::Rect> rectangles;
};

}  // namespace ScrollingCapture::Live
