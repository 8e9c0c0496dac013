#pragma once

#include <live/x11/XConnection.h>
#include <opencv2/core.hpp>

namespace ScrollingCapture::Live {

/// Draws the mouse pointer into a capture, where it is and as it looks now, as far as it is inside.
/// Does nothing where the server has no XFixes extension.
/// @param capture CV_8UC4: red, green, blue, opaque
/// @param origin  of the capture on the screen
void DrawPointer(const XConnection& connection, const cv::Point& origin, cv::Mat& capture);

}  // namespace ScrollingCapture::Live
