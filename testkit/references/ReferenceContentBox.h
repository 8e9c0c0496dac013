#pragma once

#include <cstdint>

#include <opencv2/core.hpp>

namespace ScrollingCapture::Testing {

/// The search for the content box pixel by pixel, with nothing clever: the yardstick for the
/// library's. The operations mean what those of BasicBorderDetection with the same names mean, and
/// write the same messages.
class ReferenceContentBox {
 public:
  ReferenceContentBox(std::uint32_t differenceThreshold, std::uint32_t neighborThreshold)
      : differenceThreshold(differenceThreshold), neighborThreshold(neighborThreshold) {}

  bool FindTopAndLeftContentBoundary(const cv::Mat& difference, cv::Range& rows,
                                     cv::Range& columns) const;
  bool FindBottomAndRightContentBoundary(const cv::Mat& difference, cv::Range& rows,
                                         cv::Range& columns) const;
  bool CheckNearestNeighbors(const cv::Mat& difference, int row, int column, bool& isContent) const;

 private:
  bool CheckPixel(const cv::Mat& difference, int row, int column, bool& isContent) const;

  std::uint32_t differenceThreshold;
  std::uint32_t neighborThreshold;
};

}  // namespace ScrollingCapture::Testing
