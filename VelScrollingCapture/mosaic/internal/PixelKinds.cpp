#include <algorithm>
#include <optional>
#include <vector>

#include <VelScrollingCapture/mosaic/internal/Cells.h>
#include <VelScrollingCapture/mosaic/internal/PixelComparison.h>
#include <VelScrollingCapture/mosaic/internal/PixelKinds.h>

namespace ScrollingCapture {
namespace {

/// How far away a plain pixel's surroundings are looked at.
constexpr int Reach = 4;

/// How many captures are passed over that lie at the same place.
constexpr size_t LongestPause = 8;

/// The nearest capture in one direction of time that lies elsewhere.
std::optional<size_t> NeighbourInTime(const CaptureLayout& layout, size_t capture, bool later) {
  const size_t available = later ? layout.Count() - 1 - capture : capture;
  for (size_t distance = 1; distance <= std::min(available, LongestPause); ++distance) {
    const size_t other = later ? capture + distance : capture - distance;
    if (layout.CornerOf(other) != layout.CornerOf(capture)) {
      return other;
    }
  }
  return std::nullopt;
}

/// Marks the pixels of a part that both captures show at the same place of the window.
void MarkStanding(const cv::Mat& pixels, const cv::Mat& other, const cv::Rect& part,
                  cv::Mat& kinds) {
  std::vector<std::uint8_t> differs(static_cast<size_t>(part.width));
  for (int row = part.y; row < part.y + part.height; ++row) {
    MarkDifferences(pixels.ptr(row, part.x), other.ptr(row, part.x), differs.size(),
                    pixels.elemSize(), differs.data());
    std::uint8_t* const kind = kinds.ptr(row, part.x);
    for (size_t i = 0; i < differs.size(); ++i) {
      kind[i] |= static_cast<std::uint8_t>((1 - differs[i]) * Standing);
    }
  }
}

/// Tells which pixels of a row differ from their surroundings.
class RowTexture {
 public:
  explicit RowTexture(const cv::Mat& pixels)
      : pixels(pixels),
        differs(static_cast<size_t>(pixels.cols)),
        textured(static_cast<size_t>(pixels.cols)) {}

  /// @return for each of the pixels of a row from `begin` to `end` whether it does
  const std::vector<std::uint8_t>& Find(int row, int begin, int end) {
    std::fill_n(textured.begin(), end - begin, std::uint8_t{0});
    const cv::Range middle(std::max(begin, Reach), std::min(end, pixels.cols - Reach));
    Mark({begin, row}, {begin + Reach, row}, middle.end - begin, 0);
    Mark({middle.start, row}, {middle.start - Reach, row}, end - middle.start,
         middle.start - begin);
    Mark({begin, row}, {begin, std::max(row - Reach, 0)}, end - begin, 0);
    Mark({begin, row}, {begin, std::min(row + Reach, pixels.rows - 1)}, end - begin, 0);
    return textured;
  }

 private:
  /// @param count pixels to compare, 0 or less for none
  /// @param first index of the first one's mark
  void Mark(const cv::Point& place, const cv::Point& other, int count, int first) {
    if (count <= 0 ||
        !MarkDifferences(pixels.ptr(place.y, place.x), pixels.ptr(other.y, other.x),
                         static_cast<size_t>(count), pixels.elemSize(), differs.data())) {
      return;
    }
    std::uint8_t* const marks = textured.data() + first;
    for (size_t i = 0; i < static_cast<size_t>(count); ++i) {
      marks[i] |= differs[i];
    }
  }

  const cv::Mat& pixels;
  std::vector<std::uint8_t> differs;
  std::vector<std::uint8_t> textured;
};

/// Turns what stands still into plain background where it equals its surroundings.
void MarkPlain(RowTexture& texture, const cv::Rect& area, cv::Mat& kinds) {
  for (int row = area.y; row < area.y + area.height; ++row) {
    const std::uint8_t* const textured = texture.Find(row, area.x, area.x + area.width).data();
    std::uint8_t* const kind = kinds.ptr(row, area.x);
    for (int i = 0; i < area.width; ++i) {
      kind[i] = std::min<std::uint8_t>(kind[i], static_cast<std::uint8_t>(Plain + textured[i]));
    }
  }
}

/// The pixels of marked cells: a part for each sequence of such cells in a row of cells.
std::vector<cv::Rect> PartsOf(const cv::Mat& cells, const cv::Size& size) {
  std::vector<cv::Rect> parts;
  for (int row = 0; row < cells.rows; ++row) {
    const std::uint8_t* const marks = cells.ptr(row);
    const std::uint8_t* const end = marks + cells.cols;
    for (const std::uint8_t* cell = marks; cell != end;) {
      const std::uint8_t* const first =
          std::find_if(cell, end, [](auto mark) { return mark != 0; });
      cell = std::find(first, end, std::uint8_t{0});
      const cv::Rect inCells(static_cast<int>(first - marks), row, static_cast<int>(cell - first),
                             1);
      const cv::Rect part(inCells.tl() * CellSize, inCells.size() * CellSize);
      if (!part.empty()) {
        parts.push_back(part & cv::Rect({}, size));
      }
    }
  }
  return parts;
}

}  // namespace

cv::Mat FindPixelKinds(const CaptureSource& source, const CaptureLayout& layout, size_t capture,
                       const cv::Mat& cells) {
  const auto pixels = source.Get(capture);
  cv::Mat kinds = cv::Mat::zeros(pixels->size(), CV_8U);
  const std::vector<cv::Rect> parts = PartsOf(cells, pixels->size());
  for (const bool later : {false, true}) {
    if (const auto other = NeighbourInTime(layout, capture, later)) {
      const auto otherPixels = source.Get(*other);
      for (const cv::Rect& part : parts) {
        MarkStanding(*pixels, *otherPixels, part, kinds);
      }
    }
  }
  RowTexture texture(*pixels);
  for (const cv::Rect& part : parts) {
    MarkPlain(texture, part, kinds);
  }
  return kinds;
}

}  // namespace ScrollingCapture
