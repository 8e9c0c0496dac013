#pragma once

#include <atomic>
#include <cstddef>

#include <testkit/memory/ForwardingAllocator.h>

namespace ScrollingCapture::Testing {

/// Counts the memory of all matrices that are made while it lives: exact, and the same on every
/// machine.
class PeakMemory {
 public:
  PeakMemory() { Counter().Restart(); }

  /// The most MiB that were in use at once.
  double MiB() const { return static_cast<double>(Counter().Peak()) / (1 << 20); }

 private:
  class CountingAllocator : public ForwardingAllocator {
   public:
    void Restart() {
      inUse = 0;
      peak = 0;
    }
    size_t Peak() const { return peak; }

   private:
    void AfterAllocation(size_t bytes) const override {
      const size_t now = inUse += bytes;
      size_t highest = peak;
      while (now > highest && !peak.compare_exchange_weak(highest, now)) {
      }
    }
    void BeforeRelease(size_t bytes) const override { inUse -= bytes; }

    mutable std::atomic<size_t> inUse = 0;
    mutable std::atomic<size_t> peak = 0;
  };

  /// Lives as long as any matrix that it has made.
  static CountingAllocator& Counter() {
    static auto& counter = *new CountingAllocator;
    return counter;
  }

  const AllocatorInUse inUse{Counter()};
};

/// The peak memory of one call.
template <typename Work>
double PeakMiBOf(Work work) {
  const PeakMemory memory;
  work();
  return memory.MiB();
}

}  // namespace ScrollingCapture::Testing
