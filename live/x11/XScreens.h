#pragma once

#include <string>
#include <vector>

#include <live/x11/XConnection.h>
#include <opencv2/core.hpp>

namespace ScrollingCapture::Live {

/// The rectangle around all screens, in pixels; they need not fill it.
cv::Rect WholeDisplay(const XConnection& connection);

/// Where the screens lie that make up the display, in pixels. They may overlap.
std::vector<cv::Rect> ScreensOf(const XConnection& connection);

/// Whether every pixel of a region is on a screen.
bool IsOnScreens(const XConnection& connection, const cv::Rect& region);

/// The screens in words, such as "1280x1024+0+0 and 1280x1024+1280+0".
std::string DescribeScreens(const XConnection& connection);

/// Whether the server shows X11 programs within a Wayland session: it knows nothing of any other
/// window then.
bool IsXWayland(const XConnection& connection);

}  // namespace ScrollingCapture::Live
