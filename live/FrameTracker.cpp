#include <algorithm>
#include <cmath>

#include <live/FrameTracker.h>
#include <live/LineMotion.h>

#include <VelScrollingCapture/matching/PairMatcher.h>

namespace ScrollingCapture::Live {
namespace {

StripAxis Other(StripAxis axis) {
  return axis == StripAxis::Upright ? StripAxis::Level : StripAxis::Upright;
}

Translation Along(StripAxis axis, int lines) {
  return axis == StripAxis::Upright ? Translation(lines, 0) : Translation(0, lines);
}

/// The lines across an axis.
std::vector<std::uint64_t> LinesAcross(StripAxis axis, const cv::Mat& strip) {
  return LineNumbers(axis == StripAxis::Upright ? strip : cv::Mat(strip.t()));
}

/// As much around the middle as can be matched quickly.
cv::Rect MiddleOf(const cv::Size& size) {
  constexpr double MostPixels = 1 << 18;
  const double scale = std::min(1.0, std::sqrt(MostPixels / size.area()));
  const cv::Size part(static_cast<int>(size.width * scale), static_cast<int>(size.height * scale));
  return {(size.width - part.width) / 2, (size.height - part.height) / 2, part.width, part.height};
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
  for (int tries = 0; tries < 2; ++tries) {
    const cv::Rect changed = ChangedStrip(followed, frame, axis);
    if (changed.empty()) {
      return Translation();
    }
    const std::optional<int> moved = LinesMovedBy(changed, frame);
    if (moved) {
      return Along(axis, *moved);
    }
    axis = Other(axis);
    strip = {};
  }
  return std::nullopt;
}

/// A strip whose lines are known is taken again as long as it holds most of what changes.
std::optional<int> FrameTracker::LinesMovedBy(const cv::Rect& changed, const cv::Mat& frame) {
  if ((strip & changed).area() * 2 < changed.area()) {
    strip = changed;
    lines = LinesAcross(axis, followed(strip));
  }
  return LineMotion(lines, LinesAcross(axis, frame(strip)));
}

std::optional<Translation> FrameTracker::AnyMotionTo(const cv::Mat& frame) const {
  const cv::Rect middle = MiddleOf(frame.size());
  const Join join = MatchPair(followed(middle), frame(middle), settings);
  return join.verdict == Verdict::Proven || join.verdict == Verdict::Likely
             ? std::make_optional(join.motion)
             : std::nullopt;
}

}  // namespace ScrollingCapture::Live
