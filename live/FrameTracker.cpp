#include <live/FrameTracker.h>

#include <VelScrollingCapture/matching/CapturePlacer.h>
#include <VelScrollingCapture/storage/BasicImageProvider.h>

namespace ScrollingCapture::Live {
namespace {

bool IsTold(const Join& join) {
  return join.verdict == Verdict::Proven || join.verdict == Verdict::Likely;
}

StripAxis Other(StripAxis axis) {
  return axis == StripAxis::Upright ? StripAxis::Level : StripAxis::Upright;
}

}  // namespace

FrameTracker::FrameTracker(const MatchingSettings& settings)
    : settings(settings),
      axis(settings.orientation == Horizontal ? StripAxis::Level : StripAxis::Upright) {}

void FrameTracker::Follow(const cv::Mat& frame) {
  followed = frame;
  strip = {};
}

std::optional<Translation> FrameTracker::MotionTo(const cv::Mat& frame) {
  for (const StripAxis tried : {axis, Other(axis)}) {
    const cv::Rect changed = ChangedStrip(followed, frame, tried);
    if (changed.empty()) {
      return Translation();
    }
    const std::optional<Translation> motion = MotionWithin(changed, frame);
    if (motion) {
      axis = tried;
      return motion;
    }
  }
  return std::nullopt;
}

std::optional<Translation> FrameTracker::MotionWithin(const cv::Rect& changed,
                                                      const cv::Mat& frame) {
  // A strip that is prepared is taken again as long as it holds most of what changes.
  if ((strip & changed).area() * 2 < changed.area()) {
    strip = changed;
    prepared = PreparedCapture(followed(strip));
  }
  cv::Mat before = followed(strip);
  cv::Mat now = frame(strip);
  BasicImageProvider strips;
  strips.Add(before);
  strips.Add(now);
  CapturePlacer placer(strips, settings);
  placer.Place(0, prepared);
  const Join join = placer.Place(1, PreparedCapture(now)).join;
  return IsTold(join) ? std::make_optional(join.motion) : std::nullopt;
}

}  // namespace ScrollingCapture::Live
