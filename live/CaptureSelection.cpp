#include <cstdlib>
#include <utility>

#include <live/AreaAt.h>
#include <live/CaptureSelection.h>

namespace ScrollingCapture::Live {
namespace {

Place MovedBy(const Place& place, const Translation& motion) {
  return {place.row - motion.GetRows(), place.column - motion.GetCols()};
}

Translation MotionBetween(const Place& before, const Place& now) {
  return {before.row - now.row, before.column - now.column};
}

}  // namespace

CaptureSelection::CaptureSelection(const MatchingSettings& settings, Keeper keeper)
    : keeper(std::move(keeper)), tracker(settings), strayTracker(settings) {}

void CaptureSelection::Take(const cv::Mat& frame) {
  if (reference.pixels.empty()) {
    Keep({frame, {}});
    return;
  }
  const std::optional<Translation> motion = tracker.MotionTo(frame);
  if (motion) {
    TakeMoved(frame, *motion);
  } else {
    TakeLost(frame);
  }
}

/// Where the reference goes on, the frame's motion is told since the new one.
void CaptureSelection::TakeMoved(const cv::Mat& frame, const Translation& motion) {
  stray.release();
  const Place place = MovedBy(reference.place, motion);
  if (restsChanged && place != latest.place) {
    Keep(latest);
    Take(frame);
    return;
  }
  if (IsFar(motion) && latest.pixels.data != reference.pixels.data) {
    Follow(latest);
    Take(frame);
    return;
  }
  latest = {frame, place};
  latestIsKept = false;
  if (IsFar(motion)) {
    Follow(latest);
  }
}

/// Of a frame that cannot be followed it is only asked whether the next one can be followed from
/// it. When that is not so either, the content may move along both axes.
void CaptureSelection::TakeLost(const cv::Mat& frame) {
  if (!stray.empty()) {
    if (strayTracker.MotionTo(frame)) {
      KeepStray();
      Take(frame);
      return;
    }
    const std::optional<Translation> motion = tracker.AnyMotionTo(frame);
    if (motion) {
      TakeMoved(frame, *motion);
      return;
    }
  }
  stray = frame;
  strayTracker.Follow(stray);
}

void CaptureSelection::Follow(const Placed& frame) {
  if (!IsSeen(frame.place)) {
    Keep(frame);
    return;
  }
  reference = frame;
  tracker.Follow(reference.pixels);
}

void CaptureSelection::Settle() {
  if (!stray.empty()) {
    KeepStray();
  } else if (!latestIsKept && latest.place != keptPlace) {
    Keep(latest);
  }
  restsChanged = !latestIsKept;
  if (latest.place != restPlace) {
    lastStep = MotionBetween(restPlace, latest.place);
    restPlace = latest.place;
  }
}

void CaptureSelection::Finish() {
  Settle();
  if (restsChanged) {
    Keep(latest);
  }
}

/// From here on the way is another one, whose places have nothing to do with those before.
void CaptureSelection::KeepStray() {
  if (!latestIsKept && (restsChanged || !IsSeen(latest.place))) {
    Keep(latest);
  }
  seen = {};
  ++timesLost;
  Keep({std::exchange(stray, cv::Mat()), latest.place});
}

void CaptureSelection::Keep(const Placed& frame) {
  reference = frame;
  latest = frame;
  tracker.Follow(frame.pixels);
  restsChanged = false;
  latestIsKept = true;
  keptPlace = frame.place;
  seen.Add(AreaAt(frame.place, frame.pixels.size()));
  keeper(frame.pixels);
}

bool CaptureSelection::IsFar(const Translation& motion) const {
  return std::abs(motion.GetRows()) * 2 > latest.pixels.rows ||
         std::abs(motion.GetCols()) * 2 > latest.pixels.cols;
}

bool CaptureSelection::IsSeen(const Place& place) const {
  return seen.Covers(AreaAt(place, latest.pixels.size()));
}

}  // namespace ScrollingCapture::Live
