#pragma once

#include <functional>

namespace ScrollingCapture::Testing {

/// What the functions that this program puts in the place of cv::dft, pthread_create and
/// pthread_cond_wait do before or instead of the real ones. Empty members change nothing. Set them
/// while no other thread runs.
struct Interposition {
  /// Whether the transform with these flags fails: gives an empty matrix.
  std::function<bool(int flags)> transformFails;
  /// Whether a thread can be started.
  std::function<bool()> threadStarts;
  /// Called when a thread is about to wait for a condition, with the condition's mutex held.
  std::function<void()> beforeWait;
};

/// The program's only interposition.
Interposition& Interposed();

/// A test's interposition, taken back at its end.
class ScopedInterposition {
 public:
  explicit ScopedInterposition(Interposition interposition);
  ScopedInterposition(const ScopedInterposition&) = delete;
  ScopedInterposition& operator=(const ScopedInterposition&) = delete;
  ~ScopedInterposition();
};

}  // namespace ScrollingCapture::Testing
