#include <algorithm>
#include <cstdlib>

#include <live/AutoScroll.h>

namespace ScrollingCapture::Live {
namespace {

constexpr int MostTriesWithoutMotion = 3;
constexpr int MostStepsBack = 100;

bool IsUpright(ScrollDirection direction) {
  return direction == ScrollDirection::Down || direction == ScrollDirection::Up;
}

ScrollDirection Opposite(ScrollDirection direction) {
  switch (direction) {
    case ScrollDirection::Down:
      return ScrollDirection::Up;
    case ScrollDirection::Up:
      return ScrollDirection::Down;
    case ScrollDirection::Right:
      return ScrollDirection::Left;
    default:
      return ScrollDirection::Right;
  }
}

}  // namespace

AutoScroll::AutoScroll(ScrollDirection direction, int limit, const cv::Size& window)
    : direction(direction),
      limit(limit),
      extent(IsUpright(direction) ? window.height : window.width) {}

std::optional<AutoScroll::Turn> AutoScroll::Next(const RecordingStatus& status) {
  if (status.tooFast) {
    return GoBack();
  }
  if (limit > 0 && Length(status.seen) >= limit) {
    return std::nullopt;
  }
  if (before && stepsBack == 0) {
    Adapt(std::abs(Along(status.place) - Along(*before)));
  }
  stepsBack = 0;
  before = status.place;
  if (triesWithoutMotion >= MostTriesWithoutMotion) {
    return std::nullopt;
  }
  return Turn{direction, steps};
}

/// So many steps that two thirds of the window move on, but not more than twice as many as before:
/// wheels accelerate. Nor more than the window has pixels, since a step that moves anything moves
/// one: what moves without the wheel, as a chat does, would make them grow for ever.
void AutoScroll::Adapt(int moved) {
  if (moved == 0) {
    ++triesWithoutMotion;
    return;
  }
  triesWithoutMotion = 0;
  const int wanted = extent * 2 / 3 * steps / moved;
  steps = std::clamp(wanted, 1, std::min(2 * steps, extent));
}

/// One step at a time, until something is in sight again that was seen before.
std::optional<AutoScroll::Turn> AutoScroll::GoBack() {
  if (stepsBack == 0) {
    gaveUp = steps == 1;
    steps = std::max(1, steps / 2);
  }
  if (gaveUp || ++stepsBack > MostStepsBack) {
    gaveUp = true;
    return std::nullopt;
  }
  return Turn{Opposite(direction), 1};
}

int AutoScroll::Along(const Place& place) const {
  return IsUpright(direction) ? place.row : place.column;
}

int AutoScroll::Length(const cv::Rect& seen) const {
  return IsUpright(direction) ? seen.height : seen.width;
}

}  // namespace ScrollingCapture::Live
