#pragma once

#include <atomic>
#include <cstddef>
#include <thread>

#include <testkit/memory/ForwardingAllocator.h>

namespace ScrollingCapture::Testing {

/// Lets the thread that made it run out of memory for matrices while it lives: after a number of
/// allocations the next one, or every further one, throws as OpenCV does then (StsNoMem). Other
/// threads get what they ask for.
class FailingAllocator {
 public:
  /// Which of the allocations fail that follow those that pass.
  enum Failures { First, All };

  /// All memory is gone.
  FailingAllocator() : FailingAllocator(0, All) {}

  FailingAllocator(size_t passing, Failures failures) { Allocator().Start(passing, failures); }

  /// Whether an allocation has failed.
  bool HasFailed() const { return Allocator().HasFailed(); }

  /// How many matrices live that were made while one of these lived.
  static size_t LiveMatrices() { return Allocator().LiveMatrices(); }

 private:
  class Failing : public ForwardingAllocator {
   public:
    void Start(size_t passingAllocations, Failures failingOnes) {
      thread = std::this_thread::get_id();
      allocations = 0;
      passing = passingAllocations;
      failures = failingOnes;
    }
    bool HasFailed() const { return allocations > passing; }
    size_t LiveMatrices() const { return liveMatrices; }

   private:
    void BeforeAllocation(double /*bytes*/) const override {
      if (std::this_thread::get_id() != thread) {
        return;
      }
      const size_t before = allocations++;
      if (failures == All ? before >= passing : before == passing) {
        Refuse();
      }
    }
    void AfterAllocation(size_t /*bytes*/) const override { ++liveMatrices; }
    void BeforeRelease(size_t /*bytes*/) const override { --liveMatrices; }

    std::thread::id thread;
    size_t passing = 0;
    Failures failures = First;
    mutable size_t allocations = 0;
    mutable std::atomic<size_t> liveMatrices = 0;
  };

  /// Lives as long as any matrix that it has made.
  static Failing& Allocator() {
    static auto& allocator = *new Failing;
    return allocator;
  }

  const AllocatorInUse inUse{Allocator()};
};

/// Calls `attempt(passing)` with 0, 1, 2, ... until it returns false: until nothing has failed in
/// it.
/// @return how many attempts had a failure
template <typename Attempt>
size_t CountFailingAttempts(Attempt attempt) {
  size_t passing = 0;
  while (attempt(passing)) {
    ++passing;
  }
  return passing;
}

}  // namespace ScrollingCapture::Testing
