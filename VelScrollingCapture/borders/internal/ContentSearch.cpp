#include <algorithm>
#include <array>

#include <VelScrollingCapture/borders/internal/ContentSearch.h>

namespace ScrollingCapture {
namespace {

constexpr unsigned int LargestDifference = 255;
constexpr unsigned int NeighborCount = 8;

/// A row is searched in blocks: large enough for vector instructions, small enough to stop early.
constexpr int BlockLength = 256;

/// Columns of one row, and which of them are content. The loops are plain, so that compilers turn
/// them into vector instructions.
class Block {
 public:
  /// Marks the content in `columns`, at most BlockLength of them.
  Block(const cv::Mat& difference, int row, const cv::Range& columns, uchar threshold,
        uchar changedAround)
      : columns(columns) {
    CountChangedInColumns(difference, row, threshold);
    const uchar* const pixels = difference.ptr(row) + columns.start;
    const int length = columns.size();
    uchar anyMark = 0;
    for (int i = 0; i < length; ++i) {
      const auto changed = static_cast<uchar>(counts[i] + counts[i + 1] + counts[i + 2]);
      const uchar isChanged = pixels[i] > threshold ? 1 : 0;
      const uchar isSurrounded = changed > changedAround ? 1 : 0;
      marks[i] = isChanged & isSurrounded;
      anyMark |= marks[i];
    }
    any = anyMark;
  }

  bool HasContent() const { return any != 0; }

  /// The first content column; call it only when there is content.
  int First() const {
    int i = 0;
    while (marks[i] == 0) {
      ++i;
    }
    return columns.start + i;
  }

  /// The last one; call it only when there is content.
  int Last() const {
    int i = columns.size() - 1;
    while (marks[i] == 0) {
      --i;
    }
    return columns.start + i;
  }

 private:
  /// Counts, for each column of the block and the one on either side, how many of the pixels above,
  /// in and below the row changed.
  void CountChangedInColumns(const cv::Mat& difference, int row, uchar threshold) {
    const int begin = std::max(columns.start - 1, 0);
    const int end = std::min(columns.end + 1, difference.cols);
    uchar* const target = counts.data() + (begin - (columns.start - 1));
    const int lastRow = std::min(row + 1, difference.rows - 1);
    for (int r = std::max(row - 1, 0); r <= lastRow; ++r) {
      const uchar* const pixels = difference.ptr(r) + begin;
      for (int i = 0; i < end - begin; ++i) {
        target[i] = static_cast<uchar>(target[i] + (pixels[i] > threshold ? 1 : 0));
      }
    }
  }

  cv::Range columns;
  std::array<uchar, BlockLength + 2> counts = {};
  std::array<uchar, BlockLength> marks;
  uchar any = 0;
};

}  // namespace

ContentSearch::ContentSearch(const cv::Mat& difference, unsigned int differenceThreshold,
                             unsigned int neighborThreshold)
    : difference(difference),
      threshold(static_cast<uchar>(std::min(differenceThreshold, LargestDifference))),
      changedAround(difference.rows < 2 || difference.cols < 2
                        ? uchar{0}
                        : static_cast<uchar>(std::min(neighborThreshold, NeighborCount) + 1)) {}

std::optional<int> ContentSearch::First(int row, const cv::Range& columns) const {
  for (int start = columns.start; start < columns.end; start += BlockLength) {
    const cv::Range part(start, std::min(start + BlockLength, columns.end));
    const Block block(difference, row, part, threshold, changedAround);
    if (block.HasContent()) {
      return block.First();
    }
  }
  return std::nullopt;
}

std::optional<int> ContentSearch::Last(int row, const cv::Range& columns) const {
  for (int end = columns.end; end > columns.start; end -= BlockLength) {
    const cv::Range part(std::max(end - BlockLength, columns.start), end);
    const Block block(difference, row, part, threshold, changedAround);
    if (block.HasContent()) {
      return block.Last();
    }
  }
  return std::nullopt;
}

}  // namespace ScrollingCapture
