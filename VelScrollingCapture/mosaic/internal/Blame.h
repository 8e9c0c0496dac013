#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/mosaic/internal/PairEvidence.h>
#include <VelScrollingCapture/mosaic/internal/Workers.h>

namespace ScrollingCapture {

/// How far away, in cells, evidence counts for a cell.
inline constexpr int EvidenceReach = 8;

/// How much of a cell stands still; none of these bits for cells that do not.
enum StandingBits : std::uint8_t {
  StandsMostly = 1,
  StandsExactly = 2,  ///< In each pixel.
};

/// What a stretch of captures has to say, in time order.
struct SequenceEvidence {
  std::vector<CapturePair> pairs;   ///< counted from the first capture of the stretch
  std::vector<PairEvidence> found;  ///< one for each pair
  /// For each capture what cells (CV_8U, StandingBits) show the same in the capture after it
  std::vector<cv::Mat> standsWithNext;
};

/// Finds how much each cell of each capture is to blame for the disagreement between captures.
///
/// A contradiction has a culprit: it is held against the two cells that it lies in, against the
/// more suspect one more than against the other. What a cell is suspected of follows from the share
/// of contradictions in its evidence; it counts for all captures in which the cell stands still,
/// and a cell with little evidence of its own follows its surroundings, and what the other captures
/// say of this place of the window. A few rounds of this tell a toolbar, which contradicts
/// everything below it, from content that only meets the toolbar now and then.
/// @return for each capture a value a cell (CV_32F), from 0 (content) to 1 (covered)
std::vector<cv::Mat> FindBlame(const SequenceEvidence& evidence, const cv::Size& cells,
                               Workers& workers);

}  // namespace ScrollingCapture
