#pragma once

#include <cstddef>

namespace ScrollingCapture::Testing {

/// One allocation by operator new fails in the thread that made it while it lives, in the library
/// as well. Other threads get what they ask for.
class FailingNew {
 public:
  /// @param passing how many allocations pass before
  explicit FailingNew(size_t passing);
  FailingNew(const FailingNew&) = delete;
  FailingNew& operator=(const FailingNew&) = delete;
  ~FailingNew();

  /// Whether one has failed since the last of these was made.
  static bool HasFailed();
};

/// Suspends a FailingNew while it lives.
class WorkingNew {
 public:
  WorkingNew();
  WorkingNew(const WorkingNew&) = delete;
  WorkingNew& operator=(const WorkingNew&) = delete;
  ~WorkingNew();

 private:
  size_t suspended;
};

}  // namespace ScrollingCapture::Testing
