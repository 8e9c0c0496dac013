#pragma once

#include <VelScrollingCapture/core/IStitcherListener.h>

namespace ScrollingCapture {

/// Tells that a stitch has failed; whatever the listener throws is dropped.
inline void CompleteUnsuccessfully(IStitcherListener& listener) noexcept try {
  listener.StitchingComplete(false);
} catch (...) {  // What ended the stitch is on its way already.
}

/// Runs `stitch`, a callable that returns whether it succeeded, and then tells the listener, once,
/// of its end. An exception that ends `stitch` passes after the listener has heard of the failure.
/// @param listener         may be null
/// @param notifyCompletion whether the listener is to hear of the end
/// @return what `stitch` returned
template <typename Stitch>
bool AnnounceCompletion(IStitcherListener* listener, bool notifyCompletion, const Stitch& stitch) {
  const bool announces = listener != nullptr && notifyCompletion;
  bool success = false;
  try {
    success = stitch();
  } catch (...) {
    if (announces) {
      CompleteUnsuccessfully(*listener);
    }
    throw;
  }
  if (announces) {
    listener->StitchingComplete(success);
  }
  return success;
}

}  // namespace ScrollingCapture
