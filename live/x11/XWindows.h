#pragma once

#include <optional>
#include <string>
#include <vector>

#include <live/x11/XConnection.h>
#include <opencv2/core.hpp>

namespace ScrollingCapture::Live {

/// Where a window lies on the screen, in pixels, without its border. Nothing when it is gone.
std::optional<cv::Rect> AreaOnScreen(const XConnection& connection, xcb_window_t window);

/// Whether a window is on the screen, as far as others do not cover it.
bool IsViewable(const XConnection& connection, xcb_window_t window);

/// Whether another window, or the edge of the screen, covers some of a window.
bool IsCovered(const XConnection& connection, xcb_window_t window);

/// The window of a program within what a window manager has put around it; itself when there is no
/// such thing.
xcb_window_t ClientWithin(const XConnection& connection, xcb_window_t window);

/// The windows under the pointer, from the one right above the screen's background to the innermost
/// one. That is where a turn of the wheel goes.
std::vector<xcb_window_t> WindowsUnderPointer(const XConnection& connection);

/// A window's title, in UTF-8.
std::string TitleOf(const XConnection& connection, xcb_window_t window);

/// The only window on the screen whose title holds a text, in upper or lower case. Throws
/// CaptureFailure when there is none, or more than one.
xcb_window_t FindWindow(const XConnection& connection, const std::string& text);

}  // namespace ScrollingCapture::Live
