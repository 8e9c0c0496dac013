#pragma once

#include <cstddef>
#include <stdexcept>
#include <thread>

#include <VelScrollingCapture/core/IStitcherListener.h>

namespace ScrollingCapture::Testing {

/// What a ThrowingListener throws.
class ListenerFailure : public std::runtime_error {
 public:
  ListenerFailure() : std::runtime_error("The listener failed.") {}
};

/// Goes on with everything, and throws at one of the calls that come from the thread that made it.
class ThrowingListener : public IStitcherListener {
 public:
  /// @param passing how many of those calls pass before
  explicit ThrowingListener(size_t passing) : passing(passing) {}

  bool ProgressCallback(int /*progress*/) override {
    Count();
    return true;
  }
  void StitchingComplete(bool /*success*/) override {
    Count();
    completed = true;
  }
  bool StitchingError(StitcherErrorCodes /*code*/, bool /*fatal*/) override {
    Count();
    return true;
  }

  /// Whether it has thrown.
  bool HasThrown() const { return calls > passing; }

  bool completed = false;  ///< Whether a completion notice has passed.

 private:
  void Count() {
    if (std::this_thread::get_id() == thread && calls++ == passing) {
      throw ListenerFailure();
    }
  }

  const std::thread::id thread = std::this_thread::get_id();
  const size_t passing;
  size_t calls = 0;
};

/// Whether the work ends by what a listener throws.
template <typename Work>
bool EndsByListener(Work work) {
  try {
    work();
  } catch (const ListenerFailure&) {
    return true;
  }
  return false;
}

}  // namespace ScrollingCapture::Testing
