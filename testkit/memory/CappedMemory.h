#pragma once

#include <cstddef>

#include <testkit/memory/ForwardingAllocator.h>

namespace ScrollingCapture::Testing {

/// Refuses matrices above a size as if memory had run out, so that absurd sizes cost nothing and
/// the answers to a failed allocation are exercised as well.
class CappedMemory : public ForwardingAllocator {
 public:
  explicit CappedMemory(size_t mostBytes) : mostBytes(static_cast<double>(mostBytes)) {}

 private:
  void BeforeAllocation(double bytes) const override {
    if (bytes > mostBytes) {
      Refuse();
    }
  }

  const double mostBytes;
};

}  // namespace ScrollingCapture::Testing
