#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/mosaic/internal/CaptureLayout.h>
#include <VelScrollingCapture/mosaic/internal/Cells.h>

namespace ScrollingCapture {

/// A stretch of a picture row that is taken from one capture.
struct Run {
  int row;
  int column;
  int length;
  std::uint32_t capture;
};

/// Which capture each pixel of a cell is taken from.
struct CellOwners {
  static constexpr std::uint32_t Nobody = 0xFFFFFFFF;

  CellOwners() { owners.fill(Nobody); }

  std::uint32_t& At(int row, int column) {
    return owners[static_cast<size_t>(row * CellSize + column)];
  }
  std::uint32_t At(int row, int column) const {
    return owners[static_cast<size_t>(row * CellSize + column)];
  }

  cv::Point cell;  ///< counted in cells of the picture
  std::array<std::uint32_t, size_t{CellSize} * CellSize> owners{};
};

/// The runs of cells, in the order of rows and columns, apart from pixels that belong to the first
/// capture that shows them anyway.
std::vector<Run> RunsOf(std::vector<CellOwners> cells, const CaptureLayout& layout);

}  // namespace ScrollingCapture
