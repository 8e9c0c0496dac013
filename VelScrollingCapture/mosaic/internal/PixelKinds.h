#pragma once

#include <cstddef>
#include <cstdint>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/mosaic/internal/CaptureLayout.h>
#include <VelScrollingCapture/mosaic/internal/CaptureSource.h>

namespace ScrollingCapture {

/// What a pixel's own look says of whether it belongs to a part that stands still.
enum PixelKind : std::uint8_t {
  Moving = 0,    ///< Other captures show something else at this place of the window.
  Plain = 1,     ///< It stands still, as plain background does even where it moves.
  Standing = 2,  ///< It stands still, and differs from its surroundings.
};

inline constexpr int PixelKindCount = 3;

/// The kinds of the pixels of one capture (CV_8U). It is compared with the nearest captures before
/// and after it that lie elsewhere.
/// @param cells CV_8U, a value a cell: not 0 where kinds are wanted
cv::Mat FindPixelKinds(const CaptureSource& source, const CaptureLayout& layout, size_t capture,
                       const cv::Mat& cells);

}  // namespace ScrollingCapture
