#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

#include <VelScrollingCapture/core/Utilities.h>
#include <VelScrollingCapture/core/internal/Messages.h>

namespace ScrollingCapture {
namespace {

constexpr int AlphaChannel = 3;

/// A point of a seam before it is known to lie inside the capture: wide enough for every
/// translation.
using WidePoint = cv::Point_<std::int64_t>;

cv::Point Saturated(const WidePoint& point) {
  return {cv::saturate_cast<int>(point.x), cv::saturate_cast<int>(point.y)};
}

std::int64_t Length(const cv::Range& range) {
  return std::int64_t{range.end} - std::int64_t{range.start};
}

bool IsInside(const cv::Mat& image, const cv::Point& point) {
  return point.x >= 0 && point.y >= 0 && point.x < image.cols && point.y < image.rows;
}

/// The part of [0, length) between two ends, both included, in either order.
cv::Range RunBetween(int first, int last, int length) {
  const auto [low, high] = std::minmax(first, last);
  return {std::max(low, 0), std::min(high, length - 1) + 1};
}

/// Sets all channels to 0; an empty or inverted range is left alone.
void ClearBlock(cv::Mat& image, const cv::Range& rows, const cv::Range& columns) {
  if (columns.end <= columns.start || rows.end <= rows.start) {
    return;
  }
  const size_t bytes = static_cast<size_t>(columns.size()) * image.elemSize();
  if (bytes == image.step[0]) {
    std::memset(image.ptr(rows.start), 0, bytes * static_cast<size_t>(rows.size()));
    return;
  }
  for (int row = rows.start; row < rows.end; ++row) {
    std::memset(image.ptr(row, columns.start), 0, bytes);
  }
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
  SlantedCut(const cv::Mat& image, const cv::Point& first, const cv::Point& second,
             bool towardsOrigin)
      : lastPoint(image.cols - 1, image.rows - 1),
        towardsOrigin(towardsOrigin),
        cutRows(static_cast<size_t>(image.cols), towardsOrigin ? -1 : image.rows) {
    const float slope =
        static_cast<float>(first.y - second.y) / static_cast<float>(second.x - first.x);
    Reach(first.x, first.y);
    Walk(first, 1.0F, -slope);
    Walk(first, -1.0F, slope);
  }

  /// The columns that the cut clears in a row. Rows of the cut only rise or only fall from column
  /// to column, so they are one run that starts at the first or ends at the last column.
  cv::Range ClearedColumns(int row) const {
    const auto clears = [this, row](int cutRow) {
      return towardsOrigin ? row <= cutRow : row >= cutRow;
    };
    const bool fromFirst = clears(cutRows.front());
    const auto change = std::partition_point(
        cutRows.begin(), cutRows.end(), [&](int cutRow) { return clears(cutRow) == fromFirst; });
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

  cv::Point lastPoint;
  bool towardsOrigin;
  std::vector<int> cutRows;
};

/// The four bytes of a pixel as one word, which compilers turn into vector code.
using PixelWord = std::uint32_t;

/// The word at `index`, which may begin at any address.
PixelWord WordAt(const uchar* pixels, int index) {
  PixelWord word = 0;
  std::memcpy(&word, pixels + sizeof(word) * static_cast<size_t>(index), sizeof(word));
  return word;
}

void SetWordAt(uchar* pixels, int index, PixelWord word) {
  std::memcpy(pixels + sizeof(word) * static_cast<size_t>(index), &word, sizeof(word));
}

/// Rows are mostly wholly visible or wholly transparent, which is worth finding out first.
void BlendRow(const uchar* source, uchar* target, int count) {
  const PixelWord alphaBits = WordAt(cv::Vec4b(0, 0, 0, 255).val, 0);
  int visible = 0;
  for (int i = 0; i < count; ++i) {
    visible += static_cast<int>((WordAt(source, i) & alphaBits) != 0);
  }
  if (visible == count) {
    std::memmove(target, source, sizeof(PixelWord) * static_cast<size_t>(count));
  } else if (visible > 0) {
    for (int i = 0; i < count; ++i) {
      const PixelWord word = WordAt(source, i);
      SetWordAt(target, i, (word & alphaBits) != 0 ? word : WordAt(target, i));
    }
  }
}

/// Any other pixel type: OpenCV decides what can be copied, and throws where alpha is no mask.
void BlendThroughMask(const cv::Mat& source, cv::Mat& target, const cv::Range& targetRows,
                      const cv::Range& targetColumns) {
  cv::Mat alpha;
  cv::extractChannel(source, alpha, AlphaChannel);
  cv::Mat block(target, targetRows, targetColumns);
  source.copyTo(block, alpha);
}

}  // namespace

void Utilities::MakeRowTransparent(cv::Mat& image, const cv::Point& start,
                                   bool towardsFirstColumn) {
  const int end = towardsFirstColumn ? 0 : image.cols - 1;
  ClearBlock(image, RunBetween(start.y, start.y, image.rows), RunBetween(start.x, end, image.cols));
}

void Utilities::MakeColumnTransparent(cv::Mat& image, const cv::Point& start,
                                      bool towardsFirstRow) {
  const int end = towardsFirstRow ? 0 : image.rows - 1;
  ClearBlock(image, RunBetween(start.y, end, image.rows), RunBetween(start.x, start.x, image.cols));
}

void Utilities::ClipCorner(cv::Mat& image, const cv::Point& first, const cv::Point& second,
                           bool towardsOrigin) {
  if (!IsInside(image, first) || !IsInside(image, second)) {
    TellErrorWithoutFlush("Points given are out of the bounds for the given matrix");
    return;
  }
  if (first.x == second.x) {
    const cv::Range columns =
        towardsOrigin ? cv::Range(0, first.x + 1) : cv::Range(first.x, image.cols);
    ClearBlock(image, cv::Range(0, image.rows), columns);
  } else if (first.y == second.y) {
    const cv::Range rows =
        towardsOrigin ? cv::Range(0, first.y + 1) : cv::Range(first.y, image.rows);
    ClearBlock(image, rows, cv::Range(0, image.cols));
  } else {
    const SlantedCut cut(image, first, second, towardsOrigin);
    for (int row = 0; row < image.rows; ++row) {
      ClearBlock(image, cv::Range(row, row + 1), cut.ClearedColumns(row));
    }
  }
}

void Utilities::CropCaptureImage(cv::Mat& capture, const Translation& translation,
                                 const cv::Rect& captureSize) {
  const int rows = translation.GetRows();
  const int cols = translation.GetCols();
  const std::int64_t rowShift = std::abs(std::int64_t{rows});
  const std::int64_t colShift = std::abs(std::int64_t{cols});
  const std::int64_t width = captureSize.width;
  const std::int64_t height = captureSize.height;
  const std::int64_t lastColumn = width - 1;
  const std::int64_t lastRow = height - 1;
  const auto clip = [&capture](const WidePoint& first, const WidePoint& second,
                               bool towardsOrigin) {
    ClipCorner(capture, Saturated(first), Saturated(second), towardsOrigin);
  };

  if (rows > 0 && cols > 0) {
    clip({colShift, lastRow}, {lastColumn, rowShift}, false);
  } else if (rows < 0 && cols < 0) {
    clip({0, height - rowShift}, {width - colShift, 0}, true);
  } else if (rows > 0 && cols < 0) {
    clip({0, rowShift}, {width - colShift, lastRow}, false);
  } else if (rows < 0 && cols > 0) {
    clip({colShift, 0}, {lastColumn, height - rowShift}, true);
  } else if (rows < 0) {
    const std::int64_t seam = (height - rowShift) / 2;
    clip({0, seam}, {lastColumn, seam}, true);
  } else if (rows > 0) {
    const std::int64_t seam = (height - rowShift) / 2 + rowShift;
    clip({0, seam}, {lastColumn, seam}, false);
  } else if (cols > 0) {
    const std::int64_t seam = (width - colShift) / 2 + colShift;
    clip({seam, 0}, {seam, lastRow}, false);
  } else {
    const std::int64_t seam = (width - colShift) / 2;
    clip({seam, 0}, {seam, lastRow}, true);
  }
}

void Utilities::BlendImages(const cv::Mat& source, cv::Mat& target, const cv::Range& targetRows,
                            const cv::Range& targetColumns) {
  if (Length(targetRows) != source.rows || Length(targetColumns) != source.cols) {
    TellErrorWithoutFlush(
        "The Ranges provided must be the same width and heigh as the source image");
    return;
  }
  if (targetRows.start < 0 || targetColumns.start < 0 || targetRows.end > target.rows ||
      targetColumns.end > target.cols) {
    TellErrorWithoutFlush("The Ranges provided must be within the bounds of the target image");
    return;
  }
  if (source.type() != CV_8UC4 || target.type() != CV_8UC4) {
    BlendThroughMask(source, target, targetRows, targetColumns);
    return;
  }
  for (int row = 0; row < source.rows; ++row) {
    BlendRow(source.ptr(row), target.ptr(targetRows.start + row, targetColumns.start), source.cols);
  }
}

}  // namespace ScrollingCapture
