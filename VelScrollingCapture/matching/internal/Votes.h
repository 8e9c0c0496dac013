#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/core/ScrollOrientation.h>
#include <VelScrollingCapture/matching/internal/Anchors.h>

namespace ScrollingCapture {

/// \file
/// Motions and places are points here: x counts columns, y counts rows.

/// Whether content may move so when motion is looked for along these axes.
bool IsAllowed(const cv::Point& motion, ScrollOrientation orientation);

/// An anchor that occurs once in each of two captures.
struct Match {
  cv::Point place;   ///< of the patch in the later capture
  cv::Point motion;  ///< of the patch since the earlier capture
  std::uint32_t hash;
};

/// A motion, and how many anchors vote for it.
struct CountedMotion {
  cv::Point motion;
  int votes;
};

/// Counts votes for motions.
class MotionTally {
 public:
  MotionTally();

  void Add(const cv::Point& motion);

  /// The motion with the most votes first, and of equal ones the smallest.
  std::vector<CountedMotion> Ordered() const;

 private:
  CountedMotion& SlotOf(const cv::Point& motion);
  void Grow();

  std::vector<CountedMotion> slots;  ///< a hash table, always a power of two of slots
  std::size_t used = 0;
};

/// All anchors that are unique in both captures and moved as `orientation` allows.
std::vector<Match> UniqueMatches(const CaptureAnchors& earlier, const CaptureAnchors& later,
                                 ScrollOrientation orientation);

/// The motions of the matches, ordered as by MotionTally.
std::vector<CountedMotion> CountMotions(const std::vector<Match>& matches);

/// The motions that bring anchors to one another that occur more than once in a capture, ordered as
/// by MotionTally. Of very many such anchors some stand for all.
std::vector<CountedMotion> MotionsOfRepeatedAnchors(const CaptureAnchors& earlier,
                                                    const CaptureAnchors& later,
                                                    ScrollOrientation orientation);

/// Whether two motions differ by one pixel at most, as that of text does that is drawn anew.
bool AreNeighbours(const cv::Point& one, const cv::Point& other);

/// The motions that differ by one pixel, as far as they are allowed.
std::vector<cv::Point> NeighboursOf(const cv::Point& motion, ScrollOrientation orientation);

/// Whether parts of a window may move so while its content moves otherwise: not at all, or along
/// one of the content's axes only.
bool IsMotionOfPart(const cv::Point& part, const cv::Point& motion);

/// Orders motions by their length, then by rows and columns.
bool IsSmaller(const cv::Point& left, const cv::Point& right);

}  // namespace ScrollingCapture
