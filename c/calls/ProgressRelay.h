#pragma once

#include <atomic>
#include <optional>

#include <VelScrollingCapture/c/picture.h>
#include <VelScrollingCapture/core/IStitcherListener.h>

namespace ScrollingCapture::C {

/// Tells a caller's callback of progress, and remembers that it asked to stop and why a stitch
/// failed.
class ProgressRelay : public IStitcherListener {
 public:
  /// @param callback may be null
  ProgressRelay(vel_progress callback, void* user) : callback(callback), user(user) {}

  /// A callback that throws, being written in C++, asks to stop.
  bool ProgressCallback(int percent) override try {
    if (callback != nullptr && callback(percent, user) != 0) {
      cancelled = true;
    }
    return !cancelled;
  } catch (...) {
    cancelled = true;
    return false;
  }

  void StitchingComplete(bool /*success*/) override {}

  bool StitchingError(StitcherErrorCodes code, bool /*fatal*/) override {
    error = code;
    return false;
  }

  bool IsCancelled() const { return cancelled; }
  std::optional<StitcherErrorCodes> Error() const { return error; }

 private:
  const vel_progress callback;
  void* const user;
  std::atomic<bool> cancelled = false;
  std::optional<StitcherErrorCodes> error;
};

/// Throws CallFailure, for a stitch that failed and told a relay why.
[[noreturn]] void ThrowStitchFailure(const ProgressRelay& relay);

}  // namespace ScrollingCapture::C
