#include <algorithm>
#include <cmath>
#include <utility>

#include <VelScrollingCapture/detection/phase/internal/Blocks.h>
#include <VelScrollingCapture/detection/phase/internal/SurfaceRows.h>
#include <VelScrollingCapture/detection/phase/internal/Transforms.h>

namespace ScrollingCapture {
namespace {

constexpr int RowsAtOnce = 32;

/// Covers rounding, in the sums as well as in the transform: far below a hundredth for any size.
constexpr float BoundMargin = 1.01F;

}  // namespace

SurfaceRows::SurfaceRows(cv::Mat correlated, const cv::Size& dftSize)
    : correlated(std::move(correlated)), spectra(RowsAtOnce, dftSize.width) {}

std::vector<SurfaceRows::Block> SurfaceRows::Blocks() const {
  const std::vector<float> rowBounds = RowBounds();
  std::vector<Block> blocks;
  ForEachBlock(correlated.cols, RowsAtOnce, [&](const cv::Range& rows) {
    const auto begin = rowBounds.begin();
    blocks.push_back({rows, *std::max_element(begin + rows.start, begin + rows.end)});
  });
  return blocks;
}

cv::Mat& SurfaceRows::Invert(const cv::Range& rows) {
  cv::transpose(correlated.colRange(rows), spectra.Complex(rows.size()));
  spectra.Pack();
  Transform(spectra.Packed(rows.size()), inverted,
            cv::DFT_INVERSE | cv::DFT_ROWS | cv::DFT_REAL_OUTPUT);
  return inverted;
}

/// Every coefficient that is kept counts twice, for itself and for the one that mirrors it. Instead
/// of its magnitude, this adds the real and the imaginary part, which is never less.
std::vector<float> SurfaceRows::RowBounds() const {
  std::vector<float> sums(2 * static_cast<size_t>(correlated.cols));
  for (int column = 0; column < correlated.rows; ++column) {
    const auto* const parts = correlated.ptr<float>(column);
    for (size_t i = 0; i < sums.size(); ++i) {
      sums[i] += std::abs(parts[i]);
    }
  }
  std::vector<float> bounds(sums.size() / 2);
  for (size_t row = 0; row < bounds.size(); ++row) {
    bounds[row] = 2 * BoundMargin * (sums[2 * row] + sums[2 * row + 1]);
  }
  return bounds;
}

}  // namespace ScrollingCapture
