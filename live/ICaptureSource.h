#pragma once

#include <chrono>
#include <stdexcept>
#include <string>

#include <opencv2/core.hpp>

namespace ScrollingCapture::Live {

/// Where a wheel takes the window over its content.
enum class ScrollDirection { Down, Up, Right, Left };

/// What a source shows at one moment.
struct Frame {
  /// CV_8UC4: red, green, blue, and an alpha of 255; of the region's size. Nobody else uses it.
  /// Empty when nothing can be seen just now.
  cv::Mat pixels;

  /// Then: why, and what the user can do about it.
  std::string hindrance;
};

/// There are no more frames to come: the window has gone, or has changed its size, so that captures
/// would not go with those before, or the connection to the window system broke. what() tells the
/// user which.
class CaptureEnded : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Frames of a window, or of a region of the screen: what there is of a platform. One thread at a
/// time.
class ICaptureSource {
 public:
  virtual ~ICaptureSource() = default;

  /// Where on the screen frames come from, in pixels; its size never changes.
  virtual cv::Rect Region() const = 0;

  /// Waits until what Grab returns may have changed since the last Grab.
  ///
  /// Throws CaptureEnded.
  /// @return false when nothing has changed within that time
  virtual bool WaitForChange(std::chrono::milliseconds timeout) = 0;

  /// What can be seen now. Throws CaptureEnded.
  virtual Frame Grab() = 0;

  /// Turns the wheel over the middle of the region, unless anything but the chosen window would get
  /// that. Throws CaptureEnded.
  /// @param steps of the wheel, at least 1
  /// @return what is in the way, in words; empty when the wheel was turned
  virtual std::string Scroll(ScrollDirection direction, int steps) = 0;
};

}  // namespace ScrollingCapture::Live
