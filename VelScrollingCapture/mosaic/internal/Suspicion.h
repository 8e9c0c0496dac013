#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/mosaic/internal/Agreement.h>
#include <VelScrollingCapture/mosaic/internal/AnalysisProgress.h>
#include <VelScrollingCapture/mosaic/internal/CaptureLayout.h>
#include <VelScrollingCapture/mosaic/internal/CaptureSource.h>
#include <VelScrollingCapture/mosaic/internal/Cells.h>
#include <VelScrollingCapture/mosaic/internal/Workers.h>

namespace ScrollingCapture {

/// How much each cell of each capture is suspected to show something that covers the content, and
/// what it then looks like; a byte a cell.
class Suspicion {
 public:
  Suspicion(const CaptureSource& source, const CaptureLayout& layout, const DisputedCells& disputed,
            Workers& workers, const AnalysisProgress& progress);

  /// From 0 (content) to 1 (covered), for a pixel of a capture's window.
  float Of(size_t capture, const cv::Point& pixel) const {
    return static_cast<float>(ByteOf(capture, pixel) >> FeatureBitCount) / MostSuspect;
  }

  /// Whether the cell of a pixel shows the background of a panel, and maybe something on it.
  bool IsOnPanel(size_t capture, const cv::Point& pixel) const {
    return ByteOf(capture, pixel) >> FeatureBitCount == MostSuspect;
  }

  /// FeatureBits of the cell of a pixel, apart from OnBackground.
  int FeaturesOf(size_t capture, const cv::Point& pixel) const {
    return ByteOf(capture, pixel) & FeatureMask;
  }

 private:
  static constexpr int FeatureBitCount = 3;
  static constexpr int FeatureMask = (1 << FeatureBitCount) - 1;
  static constexpr int MostSuspect = 255 >> FeatureBitCount;  ///< Only what is on a panel is so.

  int ByteOf(size_t capture, const cv::Point& pixel) const {
    const cv::Mat& map = maps[capture];
    return map.empty() ? 0 : map.at<std::uint8_t>(pixel.y / CellSize, pixel.x / CellSize);
  }

  cv::Mat Pack(const cv::Mat& pixels, const cv::Mat& suspicion, const cv::Mat& panels,
               const CaptureLayout& layout) const;

  std::vector<cv::Mat>
      maps;  ///< suspicion above the features (CV_8U); empty for captures that nobody contradicts
};

}  // namespace ScrollingCapture
