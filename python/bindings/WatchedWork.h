#pragma once

#include <functional>

#include <pybind11/pybind11.h>

namespace ScrollingCapture::Python {

/// Tells how far work has come, in per cent, from any thread.
/// @return false when the work is to stop
using TellProgress = std::function<bool(int percent)>;

/// Does work on a thread of its own, without the GIL, so that the calling thread, which holds it,
/// can hear of Ctrl-C and call Python meanwhile: library threads never do. Throws what the work
/// throws, or what a signal handler or the listener raises, in Python's words KeyboardInterrupt for
/// one; either is thrown when the work has stopped.
/// @param listener is called on the calling thread with the progress, the latest where several are
///                 new; may be None
void RunWatched(const std::function<void(const TellProgress& tell)>& work,
                const pybind11::object& listener);

}  // namespace ScrollingCapture::Python
