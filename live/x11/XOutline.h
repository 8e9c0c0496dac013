#pragma once

#include <array>

#include <live/x11/XConnection.h>
#include <opencv2/core.hpp>

namespace ScrollingCapture::Live {

/// An outline on the screen: four thin windows that no window manager minds.
class XOutline {
 public:
  explicit XOutline(const XConnection& connection);
  XOutline(const XOutline&) = delete;
  XOutline& operator=(const XOutline&) = delete;

  /// It is gone from the screen then.
  ~XOutline();

  /// Shows it just inside a rectangle; an empty one hides it.
  void Show(const cv::Rect& rectangle);

 private:
  const XConnection& connection;
  std::array<xcb_window_t, 4> sides = {};
  cv::Rect shown;
};

}  // namespace ScrollingCapture::Live
