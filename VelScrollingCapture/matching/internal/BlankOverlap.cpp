#include <algorithm>
#include <cstddef>
#include <cstring>

#include <VelScrollingCapture/matching/internal/BlankOverlap.h>
#include <VelScrollingCapture/matching/internal/Votes.h>

namespace ScrollingCapture {
namespace {

/// Fewer rows are no overlap.
constexpr int LeastRows = 8;

/// Nearly all captures begin and end with some blank rows: a smaller part of what scrolls says
/// nothing.
constexpr int LeastPart = 8;

/// The rows of a capture, counted from its upper or lower end.
struct Rows {
  const cv::Mat& keys;
  bool fromBelow;

  const void* At(int row) const {
    return keys.ptr<unsigned char>(fromBelow ? keys.rows - 1 - row : row);
  }
};

bool AreAlike(const Rows& one, int row, const Rows& other, int otherRow) {
  return std::memcmp(one.At(row), other.At(otherRow),
                     static_cast<std::size_t>(one.keys.cols) * one.keys.elemSize()) == 0;
}

/// How many rows from some row on are like it.
int RunAt(const Rows& rows, int first) {
  int row = first + 1;
  while (row < rows.keys.rows && AreAlike(rows, row, rows, first)) {
    ++row;
  }
  return row - first;
}

/// How many rows are the same in another capture, but for the blank ones that they end with, if
/// any: blank rows seem to stand still.
int BarOf(const Rows& rows, const Rows& other) {
  int equal = 0;
  while (equal < rows.keys.rows && AreAlike(rows, equal, other, equal)) {
    ++equal;
  }
  const bool isBlankBeyond = equal < rows.keys.rows && RunAt(rows, equal) >= LeastRows;
  const int blank = isBlankBeyond ? equal : equal - 1;
  int bar = equal;
  while (bar > 0 && AreAlike(rows, bar - 1, rows, blank)) {
    --bar;
  }
  return bar;
}

/// Adds the motions that lay the blank beginning of one capture on the blank end of the other one.
void AddMotions(const cv::Mat& earlier, const cv::Mat& later, bool isUpwards,
                std::vector<cv::Point>& motions) {
  const Rows beginning = {later, !isUpwards};
  const Rows end = {earlier, isUpwards};
  const int first = BarOf(beginning, {earlier, beginning.fromBelow});
  const int last = BarOf(end, {later, end.fromBelow});
  const int height = later.rows - first - last;
  if (height < LeastRows || !AreAlike(beginning, first, end, last)) {
    return;
  }
  const int longest = std::min({RunAt(beginning, first), RunAt(end, last), height});
  if (longest * LeastPart >= height) {
    for (int overlap = longest; overlap >= LeastRows; --overlap) {
      motions.emplace_back(0, isUpwards ? overlap - height : height - overlap);
    }
  }
}

std::vector<cv::Point> MotionsAlongRows(const cv::Mat& earlier, const cv::Mat& later) {
  std::vector<cv::Point> motions;
  AddMotions(earlier, later, true, motions);
  AddMotions(earlier, later, false, motions);
  std::sort(motions.begin(), motions.end(), IsSmaller);
  motions.erase(std::unique(motions.begin(), motions.end()), motions.end());
  return motions;
}

}  // namespace

std::vector<cv::Point> MotionsOfBlankOverlap(const cv::Mat& earlier, const cv::Mat& later,
                                             ScrollOrientation orientation) {
  if (orientation == Both || orientation == Vertical) {
    return MotionsAlongRows(earlier, later);
  }
  std::vector<cv::Point> motions;
  if (orientation == Horizontal) {
    motions = MotionsAlongRows(earlier.t(), later.t());
    std::transform(motions.begin(), motions.end(), motions.begin(),
                   [](const cv::Point& motion) { return cv::Point(motion.y, motion.x); });
  }
  return motions;
}

}  // namespace ScrollingCapture
