#pragma once

#include <string>

#include <live/x11/XConnection.h>
#include <opencv2/core.hpp>

namespace ScrollingCapture::Live {

/// The way to a window's pixels. With the server's Composite extension the window has memory of its
/// own, which it fills also where other windows cover it, or where it lies off the screen; without,
/// it has to be in sight.
class XWindowView {
 public:
  XWindowView(const XConnection& connection, xcb_window_t window);
  XWindowView(const XWindowView&) = delete;
  XWindowView& operator=(const XWindowView&) = delete;
  ~XWindowView();

  /// To be called when the window was shown again: it has new memory then.
  void Renew();

  /// Where to read.
  xcb_drawable_t Drawable() const { return pixmap != XCB_PIXMAP_NONE ? pixmap : window; }

  /// Where in there the window begins.
  cv::Point Origin() const { return origin; }

  /// Why not all of it can be seen now, in words; empty when it can.
  std::string Hindrance() const;

 private:
  const XConnection& connection;
  const xcb_window_t window;
  bool isRedirected = false;
  xcb_pixmap_t pixmap = XCB_PIXMAP_NONE;
  cv::Point origin;
};

}  // namespace ScrollingCapture::Live
