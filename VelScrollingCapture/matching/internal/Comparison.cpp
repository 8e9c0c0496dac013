#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>
#include <utility>
#include <vector>

#include <VelScrollingCapture/matching/internal/Comparison.h>

namespace ScrollingCapture {
namespace {

/// A row of whole cells in two captures.
struct CellRow {
  const std::uint32_t* earlier;
  const std::uint32_t* later;
  std::size_t earlierStep;  ///< from row to row, in pixels
  std::size_t laterStep;
  int cells;
};

[[gnu::always_inline]] inline void CountEqual(const CellRow& row, std::uint32_t* equal) {
  for (int cell = 0; cell < row.cells; ++cell) {
    std::array<std::uint32_t, CellSide> columns{};
    const std::uint32_t* earlier = row.earlier + std::ptrdiff_t{cell} * CellSide;
    const std::uint32_t* later = row.later + std::ptrdiff_t{cell} * CellSide;
    for (int line = 0; line < CellSide; ++line) {
      for (std::size_t i = 0; i < CellSide; ++i) {
        columns[i] += static_cast<std::uint32_t>(earlier[i] == later[i]);
      }
      earlier += row.earlierStep;
      later += row.laterStep;
    }
    equal[cell] = columns[0] + columns[1] + columns[2] + columns[3] + columns[4] + columns[5] +
                  columns[6] + columns[7];
  }
}

using EqualCounter = void (*)(const CellRow&, std::uint32_t* equal);

void CountEqualPlainly(const CellRow& row, std::uint32_t* equal) { CountEqual(row, equal); }

SCROLLING_CAPTURE_WIDE_TARGET void CountEqualWidely(const CellRow& row, std::uint32_t* equal) {
  CountEqual(row, equal);
}

/// Two captures under one motion.
class Comparer {
 public:
  Comparer(const cv::Mat& earlier, const cv::Mat& later, const cv::Point& motion,
           const cv::Rect& content, Vectors vectors)
      : earlier(earlier),
        later(later),
        motion(motion),
        countEqual(vectors == Vectors::Widest && HasWideVectors() ? CountEqualWidely
                                                                  : CountEqualPlainly) {
    result.overlap = OverlapOf(later.size(), motion);
    if (!result.overlap.empty()) {
      result.overlap &= content & (content + motion);
    }
    result.unequal = cv::Mat::zeros(CellsOf(later.size()), CV_8UC1);
  }

  Comparison Compare() {
    const cv::Rect& overlap = result.overlap;
    if (!overlap.empty()) {
      std::vector<std::uint32_t> equal(static_cast<std::size_t>(result.unequal.cols));
      const int lastRow = (overlap.br().y - 1) / CellSide;
      for (int row = overlap.y / CellSide; row <= lastRow; ++row) {
        CompareRow(row, equal);
      }
    }
    return std::move(result);
  }

 private:
  const std::uint32_t* EarlierAt(int row, int column) const {
    return earlier.ptr<std::uint32_t>(row - motion.y) + (column - motion.x);
  }
  const std::uint32_t* LaterAt(int row, int column) const {
    return later.ptr<std::uint32_t>(row) + column;
  }

  void CompareRow(int row, std::vector<std::uint32_t>& equal) {
    const cv::Rect& overlap = result.overlap;
    const bool isWhole = row * CellSide >= overlap.y && (row + 1) * CellSide <= overlap.br().y;
    const int firstWhole = (overlap.x + CellSide - 1) / CellSide;
    const int endOfWhole = overlap.br().x / CellSide;
    const int firstCell = overlap.x / CellSide;
    const int lastCell = (overlap.br().x - 1) / CellSide;
    if (!isWhole || firstWhole >= endOfWhole) {
      CompareEdges(row, firstCell, lastCell + 1);
      return;
    }
    CompareEdges(row, firstCell, firstWhole);
    const CellRow cells = {EarlierAt(row * CellSide, firstWhole * CellSide),
                           LaterAt(row * CellSide, firstWhole * CellSide), earlier.step1(),
                           later.step1(), endOfWhole - firstWhole};
    countEqual(cells, equal.data());
    for (int cell = 0; cell < cells.cells; ++cell) {
      const std::uint32_t count = equal[static_cast<std::size_t>(cell)];
      Note(row, firstWhole + cell, CellSide * CellSide, static_cast<int>(count));
    }
    CompareEdges(row, endOfWhole, lastCell + 1);
  }

  /// Cells that are not wholly in the overlap.
  void CompareEdges(int row, int firstCell, int endOfCells) {
    for (int cell = firstCell; cell < endOfCells; ++cell) {
      const cv::Rect pixels =
          cv::Rect(cell * CellSide, row * CellSide, CellSide, CellSide) & result.overlap;
      int equal = 0;
      for (int y = pixels.y; y < pixels.br().y; ++y) {
        const std::uint32_t* const left = EarlierAt(y, pixels.x);
        const std::uint32_t* const right = LaterAt(y, pixels.x);
        for (int x = 0; x < pixels.width; ++x) {
          equal += static_cast<int>(left[x] == right[x]);
        }
      }
      Note(row, cell, pixels.area(), equal);
    }
  }

  void Note(int row, int cell, int pixels, int equal) {
    result.equal += equal;
    result.unequal.at<unsigned char>(row, cell) = static_cast<unsigned char>(pixels - equal);
  }

  const cv::Mat& earlier;
  const cv::Mat& later;
  const cv::Point motion;
  const EqualCounter countEqual;
  Comparison result;
};

/// How many pixels of a part of the later capture agree.
std::int64_t CountEqual(const cv::Mat& earlier, const cv::Mat& later, const cv::Point& motion,
                        const cv::Rect& part) {
  std::int64_t equal = 0;
  for (int row = part.y; row < part.br().y; ++row) {
    const auto* const left = earlier.ptr<std::uint32_t>(row - motion.y) + part.x - motion.x;
    const auto* const right = later.ptr<std::uint32_t>(row) + part.x;
    int ofRow = 0;
    for (int i = 0; i < part.width; ++i) {
      ofRow += static_cast<int>(left[i] == right[i]);
    }
    equal += ofRow;
  }
  return equal;
}

}  // namespace

cv::Size CellsOf(const cv::Size& capture) {
  return {(capture.width + CellSide - 1) / CellSide, (capture.height + CellSide - 1) / CellSide};
}

cv::Rect OverlapOf(const cv::Size& capture, const cv::Point& motion) {
  const auto isBeyond = [](int distance, int length) {
    return std::abs(std::int64_t{distance}) >= length;
  };
  if (isBeyond(motion.x, capture.width) || isBeyond(motion.y, capture.height)) {
    return {};
  }
  return cv::Rect({0, 0}, capture) & cv::Rect(motion, capture);
}

Comparison Compare(const cv::Mat& earlier, const cv::Mat& later, const cv::Point& motion,
                   const cv::Rect& content, Vectors vectors) {
  return Comparer(earlier, later, motion, content, vectors).Compare();
}

Comparison Compare(const cv::Mat& earlier, const cv::Mat& later, const cv::Point& motion,
                   Vectors vectors) {
  return Compare(earlier, later, motion, {{0, 0}, later.size()}, vectors);
}

Agreement AgreementOf(const cv::Mat& earlier, const cv::Mat& later, const cv::Point& motion,
                      const Comparison& seen) {
  const cv::Rect all = OverlapOf(later.size(), motion);
  Agreement agreement = {std::int64_t{all.width} * all.height, seen.equal};
  const cv::Rect part = seen.overlap.empty() ? cv::Rect(all.tl(), cv::Size()) : seen.overlap;
  for (const cv::Rect& rest :
       {cv::Rect(all.tl(), cv::Point(all.br().x, part.y)),
        cv::Rect(cv::Point(all.x, part.br().y), all.br()),
        cv::Rect(all.x, part.y, part.x - all.x, part.height),
        cv::Rect(part.br().x, part.y, all.br().x - part.br().x, part.height)}) {
    agreement.equal += CountEqual(earlier, later, motion, rest);
  }
  return agreement;
}

}  // namespace ScrollingCapture
