#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include <VelScrollingCapture/mosaic/internal/Cells.h>

namespace ScrollingCapture {

/// Marks, 0 or 1, of the pixels of a row that lie in one cell: a byte each.
using CellMarks = std::uint64_t;

static_assert(sizeof(CellMarks) == CellSize, "Each pixel of a cell's row has a byte.");

/// @param count pixels that there are marks of, CellSize at most; the others are unmarked
inline CellMarks LoadMarks(const std::uint8_t* marks, size_t count) {
  CellMarks loaded = 0;
  if (count == CellSize) {
    std::memcpy(&loaded, marks, CellSize);
  } else {
    std::memcpy(&loaded, marks, count);
  }
  return loaded;
}

/// How many pixels are marked.
inline int CountMarks(CellMarks marks) {
  constexpr CellMarks One = 0x0101010101010101;
  return static_cast<int>(marks * One >> (8 * (CellSize - 1)));
}

/// Calls `take(cell, first, count)` for the cells in which pixels of a row lie: for each the first
/// of its pixels, counted from the first one of all, and their number.
/// @param column of the first pixel
template <typename Take>
void ForEachCell(int column, size_t pixels, Take take) {
  int cell = column / CellSize;
  size_t count = std::min(static_cast<size_t>(CellSize - column % CellSize), pixels);
  for (size_t first = 0; first < pixels; ++cell) {
    take(cell, first, count);
    first += count;
    count = std::min<size_t>(CellSize, pixels - first);
  }
}

}  // namespace ScrollingCapture
