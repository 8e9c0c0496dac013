#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/mosaic/internal/CaptureLayout.h>
#include <VelScrollingCapture/mosaic/internal/CaptureSource.h>
#include <VelScrollingCapture/mosaic/internal/PixelKinds.h>

namespace ScrollingCapture {

/// Two captures that overlap without lying at the same place.
struct CapturePair {
  size_t first;
  size_t second;
};

/// Pixels at which a cell of one capture disagrees with a cell of another about the content.
struct Contradiction {
  std::uint32_t firstCell;  ///< row by row from the window's top-left cell
  std::uint32_t secondCell;
  /// How many pixels there are of each kind in the first capture, plus PixelKindCount times that in
  /// the second.
  std::array<std::uint8_t, PixelKindCount * PixelKindCount> counts;
};

/// What the overlap of a pair says.
struct PairEvidence {
  std::vector<Contradiction> contradictions;
  /// Pixels a cell (CV_8U) at which both agree. Moved ones would contradict each other if they
  /// stood still; the others would agree then as well.
  cv::Mat firstMoved, firstPlain, secondMoved, secondPlain;
};

/// Compares a pair. The kinds are those of its captures' pixels.
/// @param wantedRows for each row of cells of the window whether evidence about it is wanted
PairEvidence GatherEvidence(const CaptureSource& source, const CaptureLayout& layout,
                            const CapturePair& pair, const cv::Mat& firstKinds,
                            const cv::Mat& secondKinds, const std::vector<bool>& wantedRows);

}  // namespace ScrollingCapture
