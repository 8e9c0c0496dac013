#include <algorithm>
#include <tuple>

#include <VelScrollingCapture/mosaic/internal/Runs.h>

namespace ScrollingCapture {
namespace {

/// Appends a pixel, to the last run where it goes on.
void Append(std::vector<Run>& runs, size_t firstOfCell, const Run& pixel) {
  if (runs.size() > firstOfCell) {
    Run& last = runs.back();
    if (last.row == pixel.row && last.capture == pixel.capture &&
        last.column + last.length == pixel.column) {
      last.length += pixel.length;
      return;
    }
  }
  runs.push_back(pixel);
}

void AddCell(const CellOwners& cell, const CaptureLayout& layout, std::vector<Run>& runs) {
  const cv::Point corner = cell.cell * CellSize;
  const cv::Rect area = RowsOfCells(layout.PictureSize(), cell.cell.y, 1);
  const int width = std::min(CellSize, layout.PictureSize().width - corner.x);
  const std::vector<size_t> captures = layout.CapturesIn({corner.x, corner.y, width, area.height});
  const size_t firstOfCell = runs.size();
  for (int row = 0; row < area.height; ++row) {
    for (int column = 0; column < width; ++column) {
      const std::uint32_t owner = cell.At(row, column);
      const cv::Point pixel = corner + cv::Point(column, row);
      const auto first = std::find_if(captures.begin(), captures.end(), [&](size_t capture) {
        return layout.RectOf(capture).contains(pixel);
      });
      if (owner != CellOwners::Nobody && first != captures.end() && *first != owner) {
        Append(runs, firstOfCell, {pixel.y, pixel.x, 1, owner});
      }
    }
  }
}

}  // namespace

std::vector<Run> RunsOf(const std::vector<CellOwners>& cells, const CaptureLayout& layout) {
  std::vector<Run> runs;
  for (const CellOwners& cell : cells) {
    AddCell(cell, layout, runs);
  }
  std::sort(runs.begin(), runs.end(), [](const Run& left, const Run& right) {
    return std::tie(left.row, left.column) < std::tie(right.row, right.column);
  });
  std::vector<Run> joined;
  for (const Run& run : runs) {
    Append(joined, 0, run);
  }
  return joined;
}

}  // namespace ScrollingCapture
