#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/mosaic/internal/CaptureLayout.h>
#include <VelScrollingCapture/mosaic/internal/CaptureSource.h>
#include <VelScrollingCapture/mosaic/internal/Cells.h>

namespace ScrollingCapture {

/// How much each cell of each capture is suspected to show something that does not move with the
/// content.
class Suspicion {
 public:
  Suspicion(const CaptureSource& source, const CaptureLayout& layout);

  /// From 0 (content) to 1 (covered), for a pixel of a capture.
  float Of(size_t capture, const cv::Point& pixel) const {
    return maps[capture].at<float>(pixel.y / CellSize, pixel.x / CellSize);
  }

  std::vector<cv::Mat> maps;  ///< CV_32F, one a capture
};

}  // namespace ScrollingCapture
