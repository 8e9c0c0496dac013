#pragma once

#include <optional>

#include <live/ICaptureSource.h>
#include <live/RecordingStatus.h>
#include <opencv2/core.hpp>

namespace ScrollingCapture::Live {

/// Decides how to turn the wheel next, so that a window is scrolled to the end of its content.
///
/// Steps grow and shrink so that a third of the window stays in sight. Where nothing joins what is
/// seen to what was seen before, it scrolls back and takes smaller steps. The end has come when the
/// content does not move any more for some tries in a row.
class AutoScroll {
 public:
  /// A turn of the wheel.
  struct Turn {
    ScrollDirection direction;
    int steps;
  };

  /// @param limit rows (columns) of the picture after which the end has come; 0: none
  AutoScroll(ScrollDirection direction, int limit, const cv::Size& window);

  /// What to do now that the content rests. Each call tells what came of the turn before.
  /// @return nothing at the end
  std::optional<Turn> Next(const RecordingStatus& status);

  /// Whether it ended since one step of the wheel is more than the window shows.
  bool GaveUp() const { return gaveUp; }

 private:
  int Along(const Place& place) const;
  int Length(const cv::Rect& seen) const;
  void Adapt(int moved);
  std::optional<Turn> GoBack();

  const ScrollDirection direction;
  const int limit;
  const int extent;  ///< of the window along the direction
  int steps = 1;     ///< of the wheel, each time
  std::optional<Place> before;
  int triesWithoutMotion = 0;
  int stepsBack = 0;
  bool gaveUp = false;
};

}  // namespace ScrollingCapture::Live
