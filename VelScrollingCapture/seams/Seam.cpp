#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <utility>

#include <VelScrollingCapture/seams/Seam.h>

namespace ScrollingCapture {
namespace {

/// A point of a line before it is known to lie inside the capture: wide enough for every
/// translation.
using WidePoint = cv::Point_<std::int64_t>;

CutLine Saturated(const WidePoint& first, const WidePoint& second, bool towardsOrigin) {
  return {{cv::saturate_cast<int>(first.x), cv::saturate_cast<int>(first.y)},
          {cv::saturate_cast<int>(second.x), cv::saturate_cast<int>(second.y)},
          towardsOrigin};
}

bool IsInside(const cv::Size& image, const cv::Point& point) {
  return point.x >= 0 && point.y >= 0 && point.x < image.width && point.y < image.height;
}

/// One coordinate of a walk along a slanted line. It stops at the image's borders and remembers
/// having met one.
class WalkCoordinate {
 public:
  WalkCoordinate(int start, int last)
      : value(static_cast<float>(start)), last(static_cast<float>(last)) {}

  /// Returns false when the step led nowhere.
  bool Advance(float step) {
    const float before = value;
    const float next = value + step;
    value = std::clamp(next, 0.0F, last);
    metBorder = metBorder || value != next;
    return value != before;
  }

  int Pixel() const { return static_cast<int>(value); }
  bool MetBorder() const { return metBorder; }

 private:
  float value;
  float last;
  bool metBorder = false;
};

/// A slanted cut through an image, as the row of the cut in every column.
class SlantedCut {
 public:
  SlantedCut(const CutLine& line, const cv::Size& image)
      : lastPoint(image.width - 1, image.height - 1),
        towardsOrigin(line.towardsOrigin),
        cutRows(static_cast<size_t>(image.width), towardsOrigin ? -1 : image.height),
        reached(line.first.x, line.first.x) {
    const cv::Point distance = line.second - line.first;
    const float slope = static_cast<float>(-distance.y) / static_cast<float>(distance.x);
    Reach(line.first.x, line.first.y);
    Walk(line.first, 1.0F, -slope);
    Walk(line.first, -1.0F, slope);
    ContinueWhereNoStepLed();
  }

  /// The columns that the cut leaves of a row. Rows of the cut only rise or only fall from column
  /// to column, so they are one run that starts at the first or ends at the last column.
  cv::Range KeptColumns(int row) const {
    const auto keeps = [this, row](int cutRow) {
      return towardsOrigin ? row > cutRow : row < cutRow;
    };
    const bool fromFirst = keeps(cutRows.front());
    const auto change = std::partition_point(
        cutRows.begin(), cutRows.end(), [&](int cutRow) { return keeps(cutRow) == fromFirst; });
    const int boundary = static_cast<int>(change - cutRows.begin());
    return fromFirst ? cv::Range(0, boundary) : cv::Range(boundary, lastPoint.x + 1);
  }

 private:
  /// Goes on along the first border it meets until it has met a second one, or until steps too
  /// small for single precision lead nowhere any more.
  void Walk(const cv::Point& start, float stepX, float stepY) {
    WalkCoordinate x(start.x, lastPoint.x);
    WalkCoordinate y(start.y, lastPoint.y);
    bool moves = true;
    while (moves && !(x.MetBorder() && y.MetBorder())) {
      const bool movesX = x.Advance(stepX);
      const bool movesY = y.Advance(stepY);
      moves = movesX || movesY;
      Reach(x.Pixel(), y.Pixel());
    }
    const int lastX = std::min(x.Pixel(), lastPoint.x);
    reached = {std::min(reached.start, lastX), std::max(reached.end, lastX)};
  }

  /// Where single precision has no odd numbers any more, a walk may come out one past the last row
  /// or column.
  void Reach(int x, int y) {
    if (x > lastPoint.x) {
      return;
    }
    const int row = std::min(y, lastPoint.y);
    int& cutRow = cutRows[static_cast<size_t>(x)];
    cutRow = towardsOrigin ? std::max(cutRow, row) : std::min(cutRow, row);
  }

  /// Such large numbers also have no next column to step to.
  void ContinueWhereNoStepLed() {
    const auto first = cutRows.begin() + reached.start;
    const auto last = cutRows.begin() + reached.end;
    std::fill(cutRows.begin(), first, *first);
    std::fill(last, cutRows.end(), *last);
  }

  cv::Point lastPoint;
  bool towardsOrigin;
  std::vector<int> cutRows;
  cv::Range reached;  // the first and the last column that a walk has reached
};

}  // namespace

CutLine CutLineOf(const Translation& translation, const cv::Size& captureSize) {
  const int rows = translation.GetRows();
  const int cols = translation.GetCols();
  const std::int64_t rowShift = std::abs(std::int64_t{rows});
  const std::int64_t colShift = std::abs(std::int64_t{cols});
  const std::int64_t width = captureSize.width;
  const std::int64_t height = captureSize.height;
  const std::int64_t lastColumn = width - 1;
  const std::int64_t lastRow = height - 1;

  if (rows > 0 && cols > 0) {
    return Saturated({colShift, lastRow}, {lastColumn, rowShift}, false);
  }
  if (rows < 0 && cols < 0) {
    return Saturated({0, height - rowShift}, {width - colShift, 0}, true);
  }
  if (rows > 0 && cols < 0) {
    return Saturated({0, rowShift}, {width - colShift, lastRow}, false);
  }
  if (rows < 0 && cols > 0) {
    return Saturated({colShift, 0}, {lastColumn, height - rowShift}, true);
  }
  if (rows != 0) {
    const std::int64_t seam = (height - rowShift) / 2 + (rows > 0 ? rowShift : 0);
    return Saturated({0, seam}, {lastColumn, seam}, rows < 0);
  }
  const std::int64_t seam = (width - colShift) / 2 + (cols > 0 ? colShift : 0);
  return Saturated({seam, 0}, {seam, lastRow}, cols <= 0);
}

std::optional<Seam> Seam::Along(const CutLine& line, const cv::Size& image) {
  const auto& [first, second, towardsOrigin] = line;
  if (!IsInside(image, first) || !IsInside(image, second)) {
    return std::nullopt;
  }
  const cv::Range whole(0, image.width);
  std::vector<cv::Range> kept(static_cast<size_t>(image.height));
  if (first.x == second.x) {
    std::fill(kept.begin(), kept.end(),
              towardsOrigin ? cv::Range(first.x + 1, image.width) : cv::Range(0, first.x));
  } else if (first.y == second.y) {
    towardsOrigin ? std::fill(kept.begin() + first.y + 1, kept.end(), whole)
                  : std::fill(kept.begin(), kept.begin() + first.y, whole);
  } else {
    const SlantedCut cut(line, image);
    int row = 0;
    std::generate(kept.begin(), kept.end(), [&] { return cut.KeptColumns(row++); });
  }
  return Seam(std::move(kept));
}

Seam::Seam(std::vector<cv::Range> keptColumns) : keptColumns(std::move(keptColumns)) {}

}  // namespace ScrollingCapture
