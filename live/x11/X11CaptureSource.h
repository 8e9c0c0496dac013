#pragma once

#include <optional>
#include <string>

#include <live/ICaptureSource.h>
#include <live/x11/XChoice.h>
#include <live/x11/XConnection.h>
#include <live/x11/XDamage.h>
#include <live/x11/XImageReader.h>
#include <live/x11/XPixels.h>
#include <live/x11/XWheel.h>
#include <live/x11/XWindowView.h>
#include <opencv2/core.hpp>

namespace ScrollingCapture::Live {

/// Captures a window or a region of the screen of an X server with XCB. It uses shared memory,
/// Composite and Damage where the server has them, and does without where not.
class X11CaptureSource : public ICaptureSource {
 public:
  /// Throws CaptureFailure when there is no server, no such window or region, or its pixels are of
  /// no use.
  /// @param showsPointer whether the mouse pointer is drawn into frames
  X11CaptureSource(const XChoice& choice, bool showsPointer);

  cv::Rect Region() const override;
  bool WaitForChange(std::chrono::milliseconds timeout) override;
  Frame Grab() override;
  std::string Scroll(ScrollDirection direction, int steps) override;

 private:
  bool IsWindow() const { return view.has_value(); }
  void TakeEvents();
  void Take(const xcb_generic_event_t& event);
  void Poll(std::chrono::milliseconds timeout) const;
  void RequireServer() const;
  cv::Mat Read();

  const XConnection connection;
  const xcb_window_t watched;  ///< the window, or the screen's background
  const cv::Rect area;         ///< within that
  const XPixels pixels;
  const bool showsPointer;
  std::optional<XWindowView> view;  ///< of a window
  XDamage damage;
  XImageReader reader;
  xcb_window_t scrolled = XCB_WINDOW_NONE;  ///< where turns of the wheel may go
  bool hasChanged = true;
};

}  // namespace ScrollingCapture::Live
