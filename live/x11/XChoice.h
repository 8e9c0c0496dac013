#pragma once

#include <opencv2/core.hpp>
#include <xcb/xcb.h>

namespace ScrollingCapture::Live {

/// What is to be captured.
struct XChoice {
  xcb_window_t window = XCB_WINDOW_NONE;  ///< a window, or none
  cv::Rect region;                        ///< then: where on the screen, in pixels
};

}  // namespace ScrollingCapture::Live
