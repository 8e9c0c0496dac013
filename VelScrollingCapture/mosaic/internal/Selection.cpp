#include <algorithm>
#include <tuple>
#include <utility>

#include <VelScrollingCapture/mosaic/internal/CellDecision.h>
#include <VelScrollingCapture/mosaic/internal/OwnParts.h>
#include <VelScrollingCapture/mosaic/internal/Selection.h>

namespace ScrollingCapture {
namespace {

/// Rows of cells that are decided at once: all captures that show them are in memory, but nothing
/// else of these captures.
constexpr int BandRows = 8;

class Selector {
 public:
  Selector(const CaptureSource& source, const CaptureLayout& layout, const DisputedCells& disputed,
           const Suspicion& suspicion, Workers& workers)
      : source(source),
        layout(layout),
        disputed(disputed),
        suspicion(suspicion),
        workers(workers),
        ownParts(layout, suspicion) {}

  std::vector<Run> Select(const AnalysisProgress& progress) {
    for (auto row = disputed.begin(); row != disputed.end();) {
      progress.Report(static_cast<double>(row->first) * CellSize / layout.PictureSize().height);
      const int begin = row->first;
      std::vector<DisputedCells::const_iterator> rows;
      for (; row != disputed.end() && row->first < begin + BandRows; ++row) {
        rows.push_back(row);
      }
      SelectBand(RowsOfCells(layout.PictureSize(), begin, rows.back()->first - begin + 1), rows);
      AddRuns(ownParts.TakeDoneAbove(row == disputed.end() ? begin + BandRows : row->first));
    }
    AddRuns(ownParts.TakeAll());
    std::sort(runs.begin(), runs.end(), [](const Run& left, const Run& right) {
      return std::tie(left.row, left.column) < std::tie(right.row, right.column);
    });
    runs.shrink_to_fit();
    return std::move(runs);
  }

 private:
  void SelectBand(const cv::Rect& band, const std::vector<DisputedCells::const_iterator>& rows) {
    const std::vector<Strip> strips = CopyStrips(band);
    std::vector<std::vector<CellDecision>> decided(rows.size());
    workers.Do(rows.size(),
               [&](size_t i) { decided[i] = DecideRow(rows[i]->first, rows[i]->second, strips); });
    std::vector<CellOwners> settled;
    for (std::vector<CellDecision>& row : decided) {
      for (CellDecision& decision : row) {
        if (decision.open > 0) {
          ownParts.Add(std::move(decision));
        } else {
          settled.push_back(decision.owners);
        }
      }
    }
    AddRuns(std::move(settled));
  }

  std::vector<Strip> CopyStrips(const cv::Rect& band) const {
    const std::vector<size_t> captures = layout.CapturesIn(band);
    std::vector<Strip> strips(captures.size());
    workers.Do(captures.size(), [&](size_t i) {
      const size_t capture = captures[i];
      const cv::Rect area = layout.RectOf(capture) & band;
      const cv::Rect inCapture = area - layout.CornerOf(capture);
      strips[i] = {static_cast<std::uint32_t>(capture), (*source.Get(capture))(inCapture).clone(),
                   area};
    });
    return strips;
  }

  std::vector<CellDecision> DecideRow(int cellRow, const std::vector<int>& cellColumns,
                                      const std::vector<Strip>& strips) const {
    const cv::Rect rows = RowsOfCells(layout.PictureSize(), cellRow, 1);
    std::vector<CellDecision> decisions;
    decisions.reserve(cellColumns.size());
    for (const int cellColumn : cellColumns) {
      const int column = cellColumn * CellSize;
      const cv::Rect area(column, rows.y, std::min(CellSize, rows.width - column), rows.height);
      decisions.push_back(DecideCell(layout, suspicion, area, strips));
    }
    return decisions;
  }

  void AddRuns(std::vector<CellOwners> cells) {
    const std::vector<Run> more = RunsOf(std::move(cells), layout);
    runs.insert(runs.end(), more.begin(), more.end());
  }

  const CaptureSource& source;
  const CaptureLayout& layout;
  const DisputedCells& disputed;
  const Suspicion& suspicion;
  Workers& workers;
  OwnParts ownParts;
  std::vector<Run> runs;
};

}  // namespace

std::vector<Run> SelectCaptures(const CaptureSource& source, const CaptureLayout& layout,
                                const DisputedCells& disputed, const Suspicion& suspicion,
                                Workers& workers, const AnalysisProgress& progress) {
  return Selector(source, layout, disputed, suspicion, workers).Select(progress);
}

}  // namespace ScrollingCapture
