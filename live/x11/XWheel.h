#pragma once

#include <string>

#include <live/ICaptureSource.h>
#include <live/x11/XConnection.h>
#include <opencv2/core.hpp>

namespace ScrollingCapture::Live {

/// The wheel of the server's test pointer. Nothing else happens on the server while it is looked
/// where a turn would go, and turned, and the pointer put back: no other window can come in
/// between.
class XWheel {
 public:
  explicit XWheel(const XConnection& connection) : connection(connection) {}

  /// Turns the wheel at a place of the screen, if that goes to a window or those within it.
  /// @return what is in the way, in words; empty when the wheel was turned
  std::string Turn(xcb_window_t window, const cv::Point& place, ScrollDirection direction,
                   int steps) const;

 private:
  std::string WhyNot(xcb_window_t window) const;
  void Press(int button) const;

  const XConnection& connection;
};

}  // namespace ScrollingCapture::Live
