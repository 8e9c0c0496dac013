#include <cstdlib>
#include <utility>

#include <live/CaptureSelection.h>

namespace ScrollingCapture::Live {
namespace {

constexpr int FirstPart = 1;

Place MovedBy(const Place& place, const Translation& motion) {
  return {place.row - motion.GetRows(), place.column - motion.GetCols()};
}

Translation MotionBetween(const Place& before, const Place& now) {
  return {before.row - now.row, before.column - now.column};
}

cv::Rect AreaAt(const Place& place, const cv::Size& size) {
  return {{place.column, place.row}, size};
}

}  // namespace

CaptureSelection::CaptureSelection(CaptureSession& session, const MatchingSettings& settings,
                                   HearOfCapture hear)
    : session(session), hear(std::move(hear)), tracker(settings), strayTracker(settings) {}

void CaptureSelection::Take(const cv::Mat& frame) {
  if (reference.pixels.empty()) {
    Keep(frame, {});
    return;
  }
  const std::optional<Translation> motion = tracker.MotionTo(frame);
  if (motion) {
    stray.release();
    TakeMoved(frame, *motion);
  } else {
    TakeLost(frame);
  }
}

/// Where the reference goes on, the frame's motion is told since the new one.
void CaptureSelection::TakeMoved(const cv::Mat& frame, const Translation& motion) {
  const Place place = MovedBy(reference.place, motion);
  if (restsChanged && place != latest.place) {
    Keep(latest.pixels, latest.place);
    Take(frame);
    return;
  }
  if (IsFar(motion) && latest.pixels.data != reference.pixels.data) {
    Follow(latest);
    Take(frame);
    return;
  }
  latest = {frame, place};
  status.place = place;
  if (IsFar(motion)) {
    Follow(latest);
  }
}

void CaptureSelection::TakeLost(const cv::Mat& frame) {
  if (!stray.empty() && strayTracker.MotionTo(frame)) {
    KeepStray();
    Take(frame);
    return;
  }
  stray = frame;
  strayTracker.Follow(stray);
}

void CaptureSelection::Follow(const Placed& frame) {
  if (!IsSeen(frame.place)) {
    Keep(frame.pixels, frame.place);
    return;
  }
  reference = frame;
  tracker.Follow(reference.pixels);
}

void CaptureSelection::Settle() {
  if (!stray.empty()) {
    KeepStray();
  } else if (!LatestIsKept() && latest.place != keptPlace) {
    Keep(latest.pixels, latest.place);
  }
  restsChanged = !LatestIsKept();
  if (status.place != restPlace) {
    status.lastStep = MotionBetween(restPlace, status.place);
    restPlace = status.place;
  }
}

void CaptureSelection::Finish() {
  Settle();
  if (restsChanged) {
    Keep(latest.pixels, latest.place);
  }
}

void CaptureSelection::KeepStray() {
  KeepLatestIfNews();
  Keep(std::exchange(stray, cv::Mat()), latest.place);
}

void CaptureSelection::KeepLatestIfNews() {
  if (!LatestIsKept() && (restsChanged || !IsSeen(latest.place))) {
    Keep(latest.pixels, latest.place);
  }
}

/// Adds a capture, and follows it from then on.
/// @param expected its place, where the session does not tell a better one
void CaptureSelection::Keep(const cv::Mat& frame, const Place& expected) {
  latest = {frame, expected};
  const CaptureOutcome outcome = session.Add(frame);
  if (outcome.placed) {
    Note(*outcome.placed);
    ++status.captures;
    status.doubtful += outcome.state == CaptureOutcome::State::Doubtful ? 1 : 0;
    hear(frame);
  }
  restsChanged = false;
  keptPixels = latest.pixels.data;
  keptPlace = latest.place;
  reference = latest;
  tracker.Follow(reference.pixels);
  status.place = latest.place;
}

void CaptureSelection::Note(const PlacedCapture& placed) {
  if (placed.part != part) {
    seen = {};
  }
  if (part == FirstPart && placed.part != FirstPart) {
    status.lastJoined = keptPlace;
  }
  part = placed.part;
  status.tooFast = part != FirstPart;
  latest.place = placed.place;
  const cv::Rect area = AreaAt(latest.place, latest.pixels.size());
  seen.Add(area);
  if (!status.tooFast) {
    status.seen |= area;
  }
}

bool CaptureSelection::IsFar(const Translation& motion) const {
  return std::abs(motion.GetRows()) * 2 > latest.pixels.rows ||
         std::abs(motion.GetCols()) * 2 > latest.pixels.cols;
}

bool CaptureSelection::IsSeen(const Place& place) const {
  return seen.Covers(AreaAt(place, latest.pixels.size()));
}

}  // namespace ScrollingCapture::Live
