#include <algorithm>
#include <cstring>

#include <VelScrollingCapture/mosaic/internal/Agreement.h>
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

class AgreementSearch {
 public:
  AgreementSearch(const CaptureSource& source, const CaptureLayout& layout)
      : source(source), layout(layout), differs(static_cast<size_t>(layout.CaptureSize().width)) {}

  Agreement Find() {
    agreement.firstShown.resize(layout.Count());
    for (size_t capture = 0; capture < layout.Count(); ++capture) {
      AddCapture(capture);
    }
    return std::move(agreement);
  }

 private:
  void AddCapture(size_t capture) {
    const cv::Rect rect = layout.RectOf(capture);
    std::vector<cv::Rect> fresh = {rect};
    const auto pixels = source.Get(capture);
    for (const size_t earlier : layout.CapturesIn(rect)) {
      if (earlier >= capture) {
        break;
      }
      Compare(capture, *pixels, earlier);
      fresh = Without(fresh, layout.RectOf(earlier));
    }
    agreement.firstShown[capture] = std::move(fresh);
  }

  /// Compares a capture with what an earlier one was the first to show.
  void Compare(size_t capture, const cv::Mat& pixels, size_t earlier) {
    std::shared_ptr<const cv::Mat> earlierPixels;
    for (const cv::Rect& area : agreement.firstShown[earlier]) {
      const cv::Rect common = area & layout.RectOf(capture);
      if (common.empty()) {
        continue;
      }
      if (earlierPixels == nullptr) {
        earlierPixels = source.Get(earlier);
      }
      CompareArea(pixels(common - layout.CornerOf(capture)),
                  (*earlierPixels)(common - layout.CornerOf(earlier)), common);
    }
  }

  void CompareArea(const cv::Mat& first, const cv::Mat& second, const cv::Rect& area) {
    const size_t rowBytes = static_cast<size_t>(area.width) * first.elemSize();
    for (int row = 0; row < area.height; ++row) {
      if (std::memcmp(first.ptr(row), second.ptr(row), rowBytes) != 0) {
        MarkDifferences(first.ptr(row), second.ptr(row), static_cast<size_t>(area.width),
                        first.elemSize(), differs.data());
        MarkCells(area.y + row, area.x, area.width);
      }
    }
  }

  void MarkCells(int row, int column, int count) {
    std::vector<std::uint8_t>& cells = agreement.disputed[row / CellSize];
    cells.resize(static_cast<size_t>(CellsOver(layout.PictureSize().width)));
    for (int i = 0; i < count; ++i) {
      cells[static_cast<size_t>((column + i) / CellSize)] |= differs[static_cast<size_t>(i)];
    }
  }

  const CaptureSource& source;
  const CaptureLayout& layout;
  std::vector<std::uint8_t> differs;
  Agreement agreement;
};

}  // namespace

std::vector<std::vector<cv::Rect>> LastShown(const CaptureLayout& layout) {
  std::vector<std::vector<cv::Rect>> shown(layout.Count());
  for (size_t capture = 0; capture < layout.Count(); ++capture) {
    const cv::Rect rect = layout.RectOf(capture);
    shown[capture] = {rect};
    for (const size_t other : layout.CapturesIn(rect)) {
      if (other > capture) {
        shown[capture] = Without(shown[capture], layout.RectOf(other));
      }
    }
  }
  return shown;
}

Agreement FindAgreement(const CaptureSource& source, const CaptureLayout& layout) {
  return AgreementSearch(source, layout).Find();
}

}  // namespace ScrollingCapture
