#pragma once

#include <functional>

#include <live/FrameTracker.h>
#include <live/RecordingStatus.h>
#include <live/SeenArea.h>
#include <opencv2/core.hpp>

#include <VelScrollingCapture/session/CaptureSession.h>

namespace ScrollingCapture::Live {

/// Chooses, of all the frames that a window shows while it scrolls, the captures that a session
/// needs.
///
/// Kept is what came to rest, and of what was in motion only as much as it takes to bridge the way:
/// a frame in motion is dropped as long as half of it is in the one kept before, and when every
/// place in it has been seen. So memory follows the size of the picture and not the time. What
/// changes without moving (a caret, a video) is kept as it looks before the content moves on. A
/// frame that has nothing in common with those before counts when the next one confirms it, or it
/// comes to rest: windows may flash while they scroll.
class CaptureSelection {
 public:
  /// Hears of every capture as it is added.
  using HearOfCapture = std::function<void(const cv::Mat& capture)>;

  /// @param session takes the captures; must outlive this, and be without captures
  CaptureSelection(CaptureSession& session, const MatchingSettings& settings, HearOfCapture hear);

  /// Takes what can be seen now, maybe in the midst of motion. Throws what CaptureSession::Add
  /// throws.
  /// @param frame CV_8UC4 of the same size as those before; its pixels are shared
  void Take(const cv::Mat& frame);

  /// Tells that the frame that was taken last is at rest.
  void Settle();

  /// Keeps what waits to be kept.
  void Finish();

  const RecordingStatus& Status() const { return status; }

 private:
  /// A frame whose place is known.
  struct Placed {
    cv::Mat pixels;
    Place place;
  };

  void TakeMoved(const cv::Mat& frame, const Translation& motion);
  void TakeLost(const cv::Mat& frame);
  void Follow(const Placed& frame);
  void Keep(const cv::Mat& frame, const Place& expected);
  void KeepStray();
  void KeepLatestIfNews();
  void Note(const PlacedCapture& placed);
  bool IsFar(const Translation& motion) const;
  bool IsSeen(const Place& place) const;
  bool LatestIsKept() const { return latest.pixels.data == keptPixels; }

  CaptureSession& session;
  const HearOfCapture hear;
  FrameTracker tracker;               ///< follows the reference
  FrameTracker strayTracker;          ///< follows the stray frame
  cv::Mat stray;                      ///< the last frame, if it could not be followed; else empty
  Placed reference;                   ///< motions are told since this one
  Placed latest;                      ///< the last frame that could be followed
  const uchar* keptPixels = nullptr;  ///< of the last capture that was kept
  Place keptPlace;                    ///< of the last capture that was kept
  bool restsChanged = false;          ///< whether the latest rests where the last kept one did
  Place restPlace;                    ///< where the content came to rest last
  int part = 1;                       ///< of the picture, that places are told in
  SeenArea seen;                      ///< of that part, by kept captures
  RecordingStatus status;
};

}  // namespace ScrollingCapture::Live
