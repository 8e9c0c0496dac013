#pragma once

#include <desktop/recording/CaptureChoice.h>
#include <live/x11/XChoice.h>

namespace ScrollingCapture::Desktop {

/// An X server: the user clicks on a window or drags a rectangle.
Platform X11Platform();

/// What was chosen already.
PickSource Chosen(const Live::XChoice& choice);

}  // namespace ScrollingCapture::Desktop
