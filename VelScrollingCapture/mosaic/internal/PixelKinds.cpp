#include <algorithm>
#include <optional>
#include <vector>

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

/// Marks the pixels that both captures show at the same place of the window.
void MarkStanding(const cv::Mat& pixels, const cv::Mat& other, cv::Mat& kinds) {
  std::vector<std::uint8_t> differs(static_cast<size_t>(pixels.cols));
  for (int row = 0; row < pixels.rows; ++row) {
    MarkDifferences(pixels.ptr(row), other.ptr(row), differs.size(), pixels.elemSize(),
                    differs.data());
    std::uint8_t* const kind = kinds.ptr(row);
    for (size_t column = 0; column < differs.size(); ++column) {
      kind[column] |= static_cast<std::uint8_t>((1 - differs[column]) * Standing);
    }
  }
}

/// Marks what differs from the pixels `Reach` to the left and to the right.
void MarkTextureInRow(const cv::Mat& pixels, int row, std::vector<std::uint8_t>& differs,
                      std::vector<std::uint8_t>& textured) {
  if (pixels.cols <= Reach) {
    return;
  }
  const size_t count = static_cast<size_t>(pixels.cols - Reach);
  MarkDifferences(pixels.ptr(row), pixels.ptr(row, Reach), count, pixels.elemSize(),
                  differs.data());
  for (size_t i = 0; i < count; ++i) {
    textured[i] |= differs[i];
    textured[i + Reach] |= differs[i];
  }
}

void MarkTextureBetweenRows(const cv::Mat& pixels, int row, int other,
                            std::vector<std::uint8_t>& differs,
                            std::vector<std::uint8_t>& textured) {
  MarkDifferences(pixels.ptr(row), pixels.ptr(other), textured.size(), pixels.elemSize(),
                  differs.data());
  for (size_t i = 0; i < textured.size(); ++i) {
    textured[i] |= differs[i];
  }
}

/// Turns what stands still into plain background where it equals its surroundings.
void MarkPlain(const cv::Mat& pixels, cv::Mat& kinds) {
  std::vector<std::uint8_t> differs(static_cast<size_t>(pixels.cols));
  std::vector<std::uint8_t> textured(differs.size());
  for (int row = 0; row < pixels.rows; ++row) {
    std::fill(textured.begin(), textured.end(), std::uint8_t{0});
    MarkTextureInRow(pixels, row, differs, textured);
    MarkTextureBetweenRows(pixels, row, std::max(row - Reach, 0), differs, textured);
    MarkTextureBetweenRows(pixels, row, std::min(row + Reach, pixels.rows - 1), differs, textured);
    std::uint8_t* const kind = kinds.ptr(row);
    for (size_t column = 0; column < textured.size(); ++column) {
      kind[column] =
          std::min<std::uint8_t>(kind[column], static_cast<std::uint8_t>(Plain + textured[column]));
    }
  }
}

}  // namespace

cv::Mat FindPixelKinds(const CaptureSource& source, const CaptureLayout& layout, size_t capture) {
  const auto pixels = source.Get(capture);
  cv::Mat kinds = cv::Mat::zeros(pixels->size(), CV_8U);
  for (const bool later : {false, true}) {
    if (const auto other = NeighbourInTime(layout, capture, later)) {
      MarkStanding(*pixels, *source.Get(*other), kinds);
    }
  }
  MarkPlain(*pixels, kinds);
  return kinds;
}

}  // namespace ScrollingCapture
