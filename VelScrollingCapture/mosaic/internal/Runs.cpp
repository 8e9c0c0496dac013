#include <algorithm>
#include <array>
#include <tuple>

#include <VelScrollingCapture/mosaic/internal/Runs.h>

namespace ScrollingCapture {
namespace {

/// Appends a pixel, to the last run where it goes on.
void Append(std::vector<Run>& runs, const Run& pixel) {
  if (!runs.empty()) {
    Run& last = runs.back();
    if (last.row == pixel.row && last.capture == pixel.capture &&
        last.column + last.length == pixel.column) {
      last.length += pixel.length;
      return;
    }
  }
  runs.push_back(pixel);
}

/// Runs of a row of cells, by row of pixels.
using RunsOfRows = std::array<std::vector<Run>, CellSize>;

/// Cells come from left to right.
void AddCell(const CellOwners& cell, const CaptureLayout& layout, RunsOfRows& runs) {
  const cv::Point corner = cell.cell * CellSize;
  const cv::Rect area =
      cv::Rect(corner, cv::Size(CellSize, CellSize)) & cv::Rect({}, layout.PictureSize());
  CellOwners first;
  const std::vector<size_t> captures = layout.CapturesIn(area);
  for (auto capture = captures.rbegin(); capture != captures.rend(); ++capture) {
    const cv::Rect shown = (layout.RectOf(*capture) & area) - corner;
    for (int row = shown.y; row < shown.y + shown.height; ++row) {
      std::fill_n(&first.At(row, shown.x), shown.width, static_cast<std::uint32_t>(*capture));
    }
  }
  for (int row = 0; row < area.height; ++row) {
    for (int column = 0; column < area.width; ++column) {
      const std::uint32_t owner = cell.At(row, column);
      if (owner != CellOwners::Nobody && owner != first.At(row, column)) {
        Append(runs[static_cast<size_t>(row)], {corner.y + row, corner.x + column, 1, owner});
      }
    }
  }
}

}  // namespace

std::vector<Run> RunsOf(std::vector<CellOwners> cells, const CaptureLayout& layout) {
  const auto isBefore = [](const CellOwners& left, const CellOwners& right) {
    return std::tie(left.cell.y, left.cell.x) < std::tie(right.cell.y, right.cell.x);
  };
  if (!std::is_sorted(cells.begin(), cells.end(), isBefore)) {
    std::sort(cells.begin(), cells.end(), isBefore);
  }
  std::vector<Run> runs;
  for (auto cell = cells.begin(); cell != cells.end();) {
    RunsOfRows ofRows;
    const int cellRow = cell->cell.y;
    for (; cell != cells.end() && cell->cell.y == cellRow; ++cell) {
      AddCell(*cell, layout, ofRows);
    }
    for (const std::vector<Run>& ofRow : ofRows) {
      runs.insert(runs.end(), ofRow.begin(), ofRow.end());
    }
  }
  return runs;
}

}  // namespace ScrollingCapture
