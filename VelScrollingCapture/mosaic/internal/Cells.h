#pragma once

#include <opencv2/core.hpp>

namespace ScrollingCapture {

/// Pixels a side of the square cells in which evidence is gathered and places are decided.
inline constexpr int CellSize = 8;

inline int CellsOver(int pixels) { return (pixels + CellSize - 1) / CellSize; }

inline cv::Size CellsOver(const cv::Size& size) {
  return {CellsOver(size.width), CellsOver(size.height)};
}

}  // namespace ScrollingCapture
