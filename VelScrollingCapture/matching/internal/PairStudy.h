#pragma once

#include <cstdint>
#include <vector>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/matching/Join.h>
#include <VelScrollingCapture/matching/MatchingSettings.h>
#include <VelScrollingCapture/matching/internal/Anchors.h>
#include <VelScrollingCapture/matching/internal/ExactProof.h>
#include <VelScrollingCapture/matching/internal/Votes.h>

namespace ScrollingCapture {

/// A capture with its anchors.
struct AnchoredCapture {
  const cv::Mat& pixels;
  const CaptureAnchors& anchors;
};

/// How two captures are joined, without regard to the steps before.
struct PairMatch {
  Join join;

  /// Hashes of some anchors that speak for the motion: when they are later seen elsewhere in the
  /// picture as well, they prove nothing any more.
  std::vector<std::uint32_t> evidence;
};

/// Finds the motion between two captures of equal size and type.
PairMatch StudyPair(const AnchoredCapture& earlier, const AnchoredCapture& later,
                    const MatchingSettings& settings);

/// The same, when the captures are thought to have moved so. Where no pixels agree, only that is
/// looked into: a motion anywhere takes long to find.
PairMatch StudyExpectedMotion(const AnchoredCapture& earlier, const AnchoredCapture& later,
                              const cv::Point& expected, const MatchingSettings& settings);

/// Asks the same about one motion only, whoever proposed it.
PairMatch StudyMotion(const AnchoredCapture& earlier, const AnchoredCapture& later,
                      const cv::Point& motion, const MatchingSettings& settings);

/// Of the motions of a doubtful join, takes the one that repeats a step before; of several, the one
/// that repeats the earlier element.
Join PreferRepetition(Join join, const std::vector<Translation>& steps);

/// Throws std::invalid_argument unless both captures are of one size and one type.
void RequireSameFormat(const CaptureAnchors& earlier, const CaptureAnchors& later);

inline Translation ToTranslation(const cv::Point& motion) { return {motion.y, motion.x}; }
inline cv::Point ToPoint(const Translation& motion) { return {motion.GetCols(), motion.GetRows()}; }

}  // namespace ScrollingCapture
