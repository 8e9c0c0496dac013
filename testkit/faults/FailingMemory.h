#pragma once

#include <atomic>
#include <cstddef>
#include <thread>

#include <testkit/memory/ForwardingAllocator.h>

namespace ScrollingCapture::Testing {

/// Lets the thread that made it run out of memory for matrices while it lives: after a number of
/// allocations the next one, or every further one, throws as OpenCV does then (StsNoMem). Other
/// threads get what they ask for.
class FailingMemory {
 public:
  /// Which of the allocations fail that follow those that pass.
  enum Failures { First, All };

  /// All memory is gone.
  FailingMemory() : FailingMemory(0, All) {}

  FailingMemory(size_t passing, Failures failures) { Allocator().Start(passing, failures); }

  /// Whether an allocation has failed.
  bool HasFailed() const { return Allocator().HasFailed(); }

  /// How many matrices live that were made while one of these lived.
  static size_t LiveMatrices() { return Allocator().LiveMatrices(); }

 private:
  class FailingAllocator : public ForwardingAllocator {
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
  static FailingAllocator& Allocator() {
    static auto& allocator = *new FailingAllocator;
    return allocator;
  }

  const AllocatorInUse inUse{Allocator()};
};

}  // namespace ScrollingCapture::Testing
