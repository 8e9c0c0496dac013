#pragma once

#include <algorithm>

#include <opencv2/core.hpp>

namespace ScrollingCapture {

/// Pixels a side of the square cells in which evidence is gathered and places are decided.
inline constexpr int CellSize = 8;

inline int CellsOver(int pixels) { return pixels / CellSize + (pixels % CellSize == 0 ? 0 : 1); }

inline cv::Size CellsOver(const cv::Size& size) {
  return {CellsOver(size.width), CellsOver(size.height)};
}

/// The pixels of rows of cells, over the whole width.
inline cv::Rect RowsOfCells(const cv::Size& size, int firstRow, int count) {
  const int top = firstRow * CellSize;
  return {0, top, size.width, std::min(count * CellSize, size.height - top)};
}

}  // namespace ScrollingCapture
