#include <algorithm>
#include <cstring>
#include <iterator>
#include <memory>
#include <mutex>

#include <VelScrollingCapture/mosaic/internal/Agreement.h>
#include <VelScrollingCapture/mosaic/internal/CellMarks.h>
#include <VelScrollingCapture/mosaic/internal/Cells.h>
#include <VelScrollingCapture/mosaic/internal/PixelComparison.h>

namespace ScrollingCapture {
namespace {

void AddIfAny(std::vector<cv::Rect>& rects, const cv::Rect& rect) {
  if (!rect.empty()) {
    rects.push_back(rect);
  }
}

/// `rect` without `hole`, in at most four rectangles.
void AddDifference(std::vector<cv::Rect>& rects, const cv::Rect& rect, const cv::Rect& hole) {
  const cv::Rect common = rect & hole;
  if (common.empty()) {
    rects.push_back(rect);
    return;
  }
  const int below = common.y + common.height;
  const int right = common.x + common.width;
  AddIfAny(rects, {rect.x, rect.y, rect.width, common.y - rect.y});
  AddIfAny(rects, {rect.x, below, rect.width, rect.y + rect.height - below});
  AddIfAny(rects, {rect.x, common.y, common.x - rect.x, common.height});
  AddIfAny(rects, {right, common.y, rect.x + rect.width - right, common.height});
}

std::vector<cv::Rect> Without(const std::vector<cv::Rect>& rects, const cv::Rect& hole) {
  std::vector<cv::Rect> rest;
  for (const cv::Rect& rect : rects) {
    AddDifference(rest, rect, hole);
  }
  return rest;
}

/// `capture`'s part of the picture without that of the captures that `hides` tells.
template <typename Hides>
std::vector<cv::Rect> Remaining(const CaptureLayout& layout, size_t capture, Hides hides) {
  const cv::Rect rect = layout.RectOf(capture);
  std::vector<cv::Rect> rest = {rect};
  for (const size_t other : layout.CapturesIn(rect)) {
    if (hides(other)) {
      rest = Without(rest, layout.RectOf(other));
    }
  }
  return rest;
}

/// The sum of two ordered lists, without repeats.
std::vector<int> Union(const std::vector<int>& first, const std::vector<int>& second) {
  std::vector<int> all;
  all.reserve(first.size() + second.size());
  std::set_union(first.begin(), first.end(), second.begin(), second.end(), std::back_inserter(all));
  all.shrink_to_fit();
  return all;
}

/// The cells of one row of cells in which an area's pixels differ.
class DisputeMarker {
 public:
  DisputeMarker(const cv::Rect& area, DisputedCells& disputed)
      : area(area),
        disputed(disputed),
        marks(static_cast<size_t>(CellsOver(area.width) + 1)),
        differs(static_cast<size_t>(area.width)) {}

  /// Rows come from top to bottom.
  void AddRow(const std::uint8_t* first, const std::uint8_t* second, size_t pixelBytes, int row) {
    if (row / CellSize != cellRow) {
      Flush();
      cellRow = row / CellSize;
    }
    MarkDifferences(first, second, differs.size(), pixelBytes, differs.data());
    ForEachCell(area.x % CellSize, differs.size(), [&](int cell, size_t begin, size_t count) {
      const bool isDisputed = LoadMarks(differs.data() + begin, count) != 0;
      marks[static_cast<size_t>(cell)] |= static_cast<std::uint8_t>(isDisputed);
    });
    isMarked = true;
  }

  void Flush() {
    if (!isMarked) {
      return;
    }
    std::vector<int> columns;
    for (size_t i = 0; i < marks.size(); ++i) {
      if (marks[i] != 0) {
        columns.push_back(area.x / CellSize + static_cast<int>(i));
        marks[i] = 0;
      }
    }
    std::vector<int>& row = disputed[cellRow];
    row = Union(row, columns);
    isMarked = false;
  }

 private:
  const cv::Rect area;
  DisputedCells& disputed;
  int cellRow = 0;
  bool isMarked = false;
  std::vector<std::uint8_t> marks;
  std::vector<std::uint8_t> differs;
};

/// Compares what two captures show of an area of the picture.
void CompareArea(const cv::Mat& first, const cv::Mat& second, const cv::Rect& area,
                 DisputedCells& disputed) {
  const size_t rowBytes = static_cast<size_t>(area.width) * first.elemSize();
  DisputeMarker marker(area, disputed);
  for (int row = 0; row < area.height; ++row) {
    if (std::memcmp(first.ptr(row), second.ptr(row), rowBytes) != 0) {
      marker.AddRow(first.ptr(row), second.ptr(row), first.elemSize(), area.y + row);
    }
  }
  marker.Flush();
}

/// Compares a capture with the captures that were the first to show what it shows.
DisputedCells CompareWithFirst(const CaptureSource& source, const CaptureLayout& layout,
                               const std::vector<std::vector<cv::Rect>>& firstShown,
                               size_t capture) {
  DisputedCells disputed;
  const cv::Rect rect = layout.RectOf(capture);
  std::shared_ptr<const cv::Mat> pixels;
  for (const size_t earlier : layout.CapturesIn(rect)) {
    if (earlier >= capture) {
      break;
    }
    std::shared_ptr<const cv::Mat> earlierPixels;
    for (const cv::Rect& area : firstShown[earlier]) {
      const cv::Rect common = area & rect;
      if (common.empty()) {
        continue;
      }
      pixels = pixels == nullptr ? source.Get(capture) : pixels;
      earlierPixels = earlierPixels == nullptr ? source.Get(earlier) : earlierPixels;
      CompareArea((*pixels)(common - layout.CornerOf(capture)),
                  (*earlierPixels)(common - layout.CornerOf(earlier)), common, disputed);
    }
  }
  return disputed;
}

void AddAll(const DisputedCells& more, DisputedCells& all) {
  for (const auto& [row, columns] : more) {
    std::vector<int>& sum = all[row];
    sum = Union(sum, columns);
  }
}

/// Captures that are compared between two reports of progress.
constexpr size_t CapturesAtOnce = 32;

}  // namespace

std::vector<std::vector<cv::Rect>> LastShown(const CaptureLayout& layout) {
  std::vector<std::vector<cv::Rect>> shown;
  shown.reserve(layout.Count());
  for (size_t capture = 0; capture < layout.Count(); ++capture) {
    shown.push_back(Remaining(layout, capture, [=](size_t other) { return other > capture; }));
  }
  return shown;
}

Agreement FindAgreement(const CaptureSource& source, const CaptureLayout& layout, Workers& workers,
                        const AnalysisProgress& progress) {
  Agreement agreement;
  agreement.firstShown.reserve(layout.Count());
  for (size_t capture = 0; capture < layout.Count(); ++capture) {
    agreement.firstShown.push_back(
        Remaining(layout, capture, [=](size_t other) { return other < capture; }));
  }
  std::mutex lock;
  for (size_t begin = 0; begin < layout.Count(); begin += CapturesAtOnce) {
    progress.Report(static_cast<double>(begin) / static_cast<double>(layout.Count()));
    workers.Do(std::min(CapturesAtOnce, layout.Count() - begin), [&](size_t i) {
      const DisputedCells disputed =
          CompareWithFirst(source, layout, agreement.firstShown, begin + i);
      const std::lock_guard<std::mutex> guard(lock);
      AddAll(disputed, agreement.disputed);
    });
  }
  return agreement;
}

std::vector<bool> FindDisputedCaptures(const CaptureLayout& layout, const DisputedCells& disputed) {
  std::vector<bool> isDisputed(layout.Count());
  for (const auto& [row, columns] : disputed) {
    for (const size_t capture : layout.CapturesIn(RowsOfCells(layout.PictureSize(), row, 1))) {
      const int left = layout.CornerOf(capture).x;
      const int right = left + (layout.CaptureSize().width - 1);
      const auto first = std::lower_bound(columns.begin(), columns.end(), left / CellSize);
      const bool isIn = first != columns.end() && *first <= right / CellSize;
      isDisputed[capture] = isDisputed[capture] || isIn;
    }
  }
  return isDisputed;
}

cv::Mat FindDisputedCells(const CaptureLayout& layout, const DisputedCells& disputed,
                          size_t capture) {
  cv::Mat cells = cv::Mat::zeros(CellsOver(layout.CaptureSize()), CV_8U);
  const cv::Rect inWindow({}, layout.CaptureSize());
  const cv::Rect rect = layout.RectOf(capture);
  const int lastRow = (rect.y + (rect.height - 1)) / CellSize;
  const int lastColumn = (rect.x + (rect.width - 1)) / CellSize;
  for (auto row = disputed.lower_bound(rect.y / CellSize);
       row != disputed.end() && row->first <= lastRow; ++row) {
    const std::vector<int>& columns = row->second;
    for (auto column = std::lower_bound(columns.begin(), columns.end(), rect.x / CellSize);
         column != columns.end() && *column <= lastColumn; ++column) {
      const cv::Point corner = cv::Point(*column, row->first) * CellSize - rect.tl();
      const cv::Rect pixels = cv::Rect(corner, cv::Size(CellSize, CellSize)) & inWindow;
      const cv::Point first = {pixels.x / CellSize, pixels.y / CellSize};
      const cv::Point last = (pixels.br() - cv::Point(1, 1)) / CellSize;
      cells(cv::Rect(first, last + cv::Point(1, 1))) = 1;
    }
  }
  return cells;
}

}  // namespace ScrollingCapture
