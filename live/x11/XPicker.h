#pragma once

#include <functional>
#include <optional>

#include <live/x11/XChoice.h>

namespace ScrollingCapture::Live {

/// Lets the user click on a window, or drag a rectangle, with the choice outlined meanwhile. Escape
/// and every other button of the mouse cancel. What is clicked hears nothing of it.
///
/// Throws CaptureFailure when there is no server, or another program holds the pointer.
/// @param goOn asked some times a second; false cancels
/// @return nothing when the user cancels
std::optional<XChoice> PickOnScreen(const std::function<bool()>& goOn);

}  // namespace ScrollingCapture::Live
