#pragma once

#include <cstddef>
#include <functional>

#include <live/FrameTracker.h>
#include <live/SeenArea.h>
#include <opencv2/core.hpp>

#include <VelScrollingCapture/core/Place.h>
#include <VelScrollingCapture/core/Translation.h>
#include <VelScrollingCapture/matching/MatchingSettings.h>

namespace ScrollingCapture::Live {

/// Chooses, of all the frames that a window shows while it scrolls, the captures that are needed.
///
/// Kept is what came to rest, and of what was in motion only as much as it takes to bridge the way:
/// a frame in motion is dropped as long as half of it is in the one kept before, and when every
/// place in it has been seen. So memory follows the size of the picture and not the time. What
/// changes without moving (a caret, a video) is kept as it looks before the content moves on. A
/// frame that has nothing in common with those before counts when the next one confirms it, or it
/// comes to rest: windows may flash while they scroll.
class CaptureSelection {
 public:
  /// Takes what is kept; may throw.
  using Keeper = std::function<void(const cv::Mat& capture)>;

  CaptureSelection(const MatchingSettings& settings, Keeper keeper);

  /// Takes what can be seen now, maybe in the midst of motion.
  /// @param frame CV_8UC4 of the same size as those before; its pixels are shared
  void Take(const cv::Mat& frame);

  /// Tells that the frame that was taken last is at rest.
  void Settle();

  /// Keeps what waits to be kept. Nothing was taken: nothing is kept.
  void Finish();

  /// Where in the content the window is, since its way could be followed last.
  const Place& WhereNow() const { return latest.place; }

  /// How far the content moved when it came to rest last.
  const Translation& LastStep() const { return lastStep; }

  /// How often the way was lost.
  std::size_t TimesLost() const { return timesLost; }

 private:
  /// A frame whose place is known.
  struct Placed {
    cv::Mat pixels;
    Place place;
  };

  void TakeMoved(const cv::Mat& frame, const Translation& motion);
  void TakeLost(const cv::Mat& frame);
  void Follow(const Placed& frame);
  void Keep(const Placed& frame);
  void KeepStray();
  bool IsFar(const Translation& motion) const;
  bool IsSeen(const Place& place) const;

  const Keeper keeper;
  FrameTracker tracker;       ///< follows the reference
  FrameTracker strayTracker;  ///< follows the stray frame
  cv::Mat stray;              ///< the last frame, if it could not be followed; else empty
  Placed reference;           ///< motions are told since this one
  Placed latest;              ///< the last frame that could be followed
  bool latestIsKept = true;
  Place keptPlace;            ///< of the last capture that was kept
  bool restsChanged = false;  ///< whether the latest rests where the last kept one did
  Place restPlace;            ///< where the content came to rest last
  Translation lastStep;
  std::size_t timesLost = 0;
  SeenArea seen;  ///< by kept captures, since the way was lost last
};

}  // namespace ScrollingCapture::Live
