#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include <VelScrollingCapture/mosaic/internal/FrozenPanes.h>
#include <VelScrollingCapture/mosaic/internal/PixelComparison.h>

namespace ScrollingCapture {
namespace {

/// Panes take up less than this share of the window.
constexpr int LargestShare = 2;

/// The corner where both panes meet is left out: so much of a row's beginning.
constexpr int CornerShare = 4;

/// A line of a pane may differ in one of so many pixels: a pointer lies above it, or a cell is lit.
constexpr std::int64_t ToleratedShare = 50;

/// What the pairs of captures say about one row or column of the window.
struct LineEvidence {
  std::int64_t compared = 0;
  std::int64_t differs = 0;      ///< pixels that contradict a pane
  std::int64_t notContent = 0;   ///< pixels that a pane explains, but the content's motion does not
  std::int64_t notStanding = 0;  ///< pixels that a pane explains, but standing still does not
};

/// Looks for a pane of rows; for one of columns everything is transposed.
class PaneSearch {
 public:
  explicit PaneSearch(const cv::Size& size)
      : lines(static_cast<size_t>(size.height / LargestShare)) {}

  /// @param moved how far the content moved from one capture to the other
  void Add(const cv::Mat& first, const cv::Mat& second, const cv::Point& moved) {
    const int begin = std::max({first.cols / CornerShare, first.cols / CornerShare - moved.x});
    const int end = std::min(first.cols, first.cols - moved.x);
    if (begin >= end) {
      return;
    }
    const auto count = static_cast<size_t>(end - begin);
    for (std::vector<std::uint8_t>* marks : {&asPane, &asContent, &asStanding}) {
      marks->resize(count);
    }
    for (int row = 0; row < static_cast<int>(lines.size()); ++row) {
      const int contentRow = row + moved.y;
      const std::uint8_t* const pixels = first.ptr(row, begin);
      const size_t bytes = first.elemSize();
      MarkDifferences(pixels, second.ptr(row, begin + moved.x), count, bytes, asPane.data());
      MarkDifferences(pixels, second.ptr(row, begin), count, bytes, asStanding.data());
      std::fill(asContent.begin(), asContent.end(), std::uint8_t{0});
      if (moved.y != 0 && contentRow >= 0 && contentRow < second.rows) {
        MarkDifferences(pixels, second.ptr(contentRow, begin + moved.x), count, bytes,
                        asContent.data());
      }
      Count(lines[static_cast<size_t>(row)]);
    }
  }

  /// How many rows the pane has.
  int Length() const {
    int length = 0;
    std::int64_t notStanding = 0;
    for (size_t row = 0; row < lines.size(); ++row) {
      const LineEvidence& line = lines[row];
      if (line.differs * ToleratedShare > line.compared) {
        break;
      }
      notStanding += line.notStanding;
      if (line.notContent * ToleratedShare > line.compared) {
        length = static_cast<int>(row) + 1;
      }
    }
    return notStanding > 0 ? length : 0;
  }

 private:
  void Count(LineEvidence& line) const {
    for (size_t i = 0; i < asPane.size(); ++i) {
      const int isPane = 1 - asPane[i];
      line.differs += asPane[i];
      line.notContent += isPane & asContent[i];
      line.notStanding += isPane & asStanding[i];
    }
    line.compared += static_cast<std::int64_t>(asPane.size());
  }

  std::vector<LineEvidence> lines;
  std::vector<std::uint8_t> asPane, asContent, asStanding;
};

cv::Mat Transposed(const cv::Mat& pixels) {
  cv::Mat transposed;
  cv::transpose(pixels, transposed);
  return transposed;
}

}  // namespace

cv::Size FindFrozenPanes(const CaptureSource& source, const CaptureLayout& layout) {
  const cv::Size size = layout.CaptureSize();
  if (layout.PictureSize().width == size.width || layout.PictureSize().height == size.height) {
    return {};
  }
  PaneSearch rows(size);
  PaneSearch columns({size.height, size.width});
  for (size_t capture = 1; capture < layout.Count(); ++capture) {
    const cv::Point moved = layout.CornerOf(capture - 1) - layout.CornerOf(capture);
    if (moved == cv::Point() || std::abs(moved.x) >= size.width ||
        std::abs(moved.y) >= size.height) {
      continue;
    }
    const auto first = source.Get(capture - 1);
    const auto second = source.Get(capture);
    rows.Add(*first, *second, moved);
    columns.Add(Transposed(*first), Transposed(*second), {moved.y, moved.x});
  }
  return {columns.Length(), rows.Length()};
}

}  // namespace ScrollingCapture
