#include <VelScrollingCapture/mosaic/internal/CellMarks.h>
#include <VelScrollingCapture/mosaic/internal/Cells.h>
#include <VelScrollingCapture/mosaic/internal/PairEvidence.h>
#include <VelScrollingCapture/mosaic/internal/PixelComparison.h>

namespace ScrollingCapture {
namespace {

class PairComparison {
 public:
  PairComparison(const cv::Mat& first, const cv::Mat& second, const cv::Rect& overlap,
                 const cv::Point& shift, const cv::Mat& firstKinds, const cv::Mat& secondKinds,
                 const std::vector<bool>& wantedRows)
      : first(first),
        second(second),
        overlap(overlap),
        shift(shift),
        firstKinds(firstKinds),
        secondKinds(secondKinds),
        wantedRows(wantedRows),
        cells(CellsOver(first.size())),
        open(2 * static_cast<size_t>(cells.width)) {
    for (std::vector<std::uint8_t>* marks : {&contradicts, &firstMoves, &secondMoves}) {
      marks->resize(static_cast<size_t>(overlap.width));
    }
    for (cv::Mat* counts : {&evidence.firstMoved, &evidence.firstPlain, &evidence.secondMoved,
                            &evidence.secondPlain}) {
      *counts = cv::Mat::zeros(cells, CV_8U);
    }
  }

  PairEvidence Gather() {
    for (int row = overlap.y; row < overlap.y + overlap.height; ++row) {
      const int secondRow = row + shift.y;
      if (row % CellSize == 0 || secondRow % CellSize == 0) {
        CloseCells();
      }
      firstCellRow = row / CellSize;
      secondCellRow = secondRow / CellSize;
      if (IsWanted(firstCellRow) || IsWanted(secondCellRow)) {
        AddRow(row, secondRow);
      }
    }
    CloseCells();
    evidence.contradictions.shrink_to_fit();
    return std::move(evidence);
  }

 private:
  bool IsWanted(int cellRow) const { return wantedRows[static_cast<size_t>(cellRow)]; }

  void AddRow(int row, int secondRow) {
    const size_t bytes = first.elemSize();
    const size_t count = contradicts.size();
    const int column = overlap.x;
    const int secondColumn = overlap.x + shift.x;
    const bool disagree =
        MarkDifferences(first.ptr(row, column), second.ptr(secondRow, secondColumn), count, bytes,
                        contradicts.data());
    MarkDifferences(first.ptr(row, column), second.ptr(row, column), count, bytes,
                    firstMoves.data());
    MarkDifferences(first.ptr(secondRow, secondColumn), second.ptr(secondRow, secondColumn), count,
                    bytes, secondMoves.data());
    AddAgreement(firstMoves, column, evidence.firstMoved.ptr(firstCellRow),
                 evidence.firstPlain.ptr(firstCellRow));
    AddAgreement(secondMoves, secondColumn, evidence.secondMoved.ptr(secondCellRow),
                 evidence.secondPlain.ptr(secondCellRow));
    if (disagree) {
      AddContradictions(firstKinds.ptr(row, column), secondKinds.ptr(secondRow, secondColumn));
    }
  }

  void AddAgreement(const std::vector<std::uint8_t>& moves, int column, std::uint8_t* moved,
                    std::uint8_t* plain) const {
    ForEachCell(column, moves.size(), [&](int cell, size_t begin, size_t count) {
      const CellMarks contradicting = LoadMarks(contradicts.data() + begin, count);
      const CellMarks moving = LoadMarks(moves.data() + begin, count);
      const int agreeing = static_cast<int>(count) - CountMarks(contradicting);
      const int agreeingMoved = CountMarks(moving & ~contradicting);
      moved[cell] = static_cast<std::uint8_t>(moved[cell] + agreeingMoved);
      plain[cell] = static_cast<std::uint8_t>(plain[cell] + agreeing - agreeingMoved);
    });
  }

  void AddContradictions(const std::uint8_t* firstKind, const std::uint8_t* secondKind) {
    ForEachCell(overlap.x, contradicts.size(), [&](int firstCell, size_t begin, size_t count) {
      if (LoadMarks(contradicts.data() + begin, count) != 0) {
        AddContradictionsOfCell(firstCell, begin, count, firstKind, secondKind);
      }
    });
  }

  /// A cell of the first capture meets two of the second in a row at most.
  void AddContradictionsOfCell(int firstCell, size_t begin, size_t count,
                               const std::uint8_t* firstKind, const std::uint8_t* secondKind) {
    const int firstSlot = firstCell - CellOffset();
    for (size_t i = begin; i < begin + count; ++i) {
      if (contradicts[i] == 0) {
        continue;
      }
      const int column = overlap.x + static_cast<int>(i);
      const int slot = firstSlot + (column + shift.x) / CellSize;
      const int kind = firstKind[i] + PixelKindCount * secondKind[i];
      ++open[static_cast<size_t>(slot)][static_cast<size_t>(kind)];
    }
    anyOpen = true;
  }

  /// The least distance, in cells, from a column's cell in the first capture to that in the second.
  int CellOffset() const { return (shift.x - (CellSize - 1) * (shift.x < 0 ? 1 : 0)) / CellSize; }

  void CloseCells() {
    if (!anyOpen) {
      return;
    }
    for (size_t slot = 0; slot < open.size(); ++slot) {
      if (open[slot] != Counts{}) {
        const int firstCell = static_cast<int>(slot / 2);
        const int secondCell = firstCell + CellOffset() + static_cast<int>(slot % 2);
        evidence.contradictions.push_back(
            {static_cast<std::uint32_t>(firstCellRow * cells.width + firstCell),
             static_cast<std::uint32_t>(secondCellRow * cells.width + secondCell), open[slot]});
        open[slot] = {};
      }
    }
    anyOpen = false;
  }

  using Counts = decltype(Contradiction::counts);

  const cv::Mat& first;
  const cv::Mat& second;
  const cv::Rect overlap;  ///< in the first capture
  const cv::Point shift;   ///< from a pixel of the first capture to the same content in the second
  const cv::Mat& firstKinds;
  const cv::Mat& secondKinds;
  const std::vector<bool>& wantedRows;
  const cv::Size cells;
  std::vector<Counts> open;  ///< of the rows of cells at work
  bool anyOpen = false;
  int firstCellRow = 0;
  int secondCellRow = 0;
  std::vector<std::uint8_t> contradicts, firstMoves, secondMoves;
  PairEvidence evidence;
};

}  // namespace

PairEvidence GatherEvidence(const CaptureSource& source, const CaptureLayout& layout,
                            const CapturePair& pair, const cv::Mat& firstKinds,
                            const cv::Mat& secondKinds, const std::vector<bool>& wantedRows) {
  const auto first = source.Get(pair.first);
  const auto second = source.Get(pair.second);
  const cv::Point corner = layout.CornerOf(pair.first);
  const cv::Rect overlap = (layout.RectOf(pair.first) & layout.RectOf(pair.second)) - corner;
  return PairComparison(*first, *second, overlap, corner - layout.CornerOf(pair.second), firstKinds,
                        secondKinds, wantedRows)
      .Gather();
}

}  // namespace ScrollingCapture
