#pragma once

#include <array>
#include <cstddef>
#include <string>

#include <gtest/gtest.h>
#include <testkit/faults/FailingAllocator.h>

/// \file
/// An operation in which each thing that can fail fails once: tried again and again, each time with
/// another failure, until it runs through.

namespace ScrollingCapture::Testing {

/// One attempt at an operation that runs out of memory.
class MemoryFault {
 public:
  MemoryFault(size_t passing, FailingAllocator::Failures failures)
      : passing(passing), failures(failures) {}

  /// Runs what may lack memory. cv::Exception is taken as an answer of the operation's.
  /// @return whether an allocation has failed
  template <typename Operation>
  bool HitsDuring(Operation operation) {
    const FailingAllocator memory(passing, failures);
    try {
      operation();
    } catch (const cv::Exception& error) {
      EXPECT_EQ(error.code, cv::Error::StsNoMem);
      EXPECT_TRUE(memory.HasFailed());
      hasThrown = true;
    }
    hasHit = memory.HasFailed();
    return hasHit;
  }

  bool HasHit() const { return hasHit; }

  /// Whether the operation has answered with an exception.
  bool HasThrown() const { return hasThrown; }

 private:
  const size_t passing;
  const FailingAllocator::Failures failures;
  bool hasHit = false;
  bool hasThrown = false;
};

/// Calls `attempt(fault)` for the failure of every allocation that its operation makes, and at last
/// without any. No matrix may be left behind.
/// @param attempt sets up what it needs, hands the operation to MemoryFault::HitsDuring, and looks
///                at the outcome
template <typename Attempt>
void ForEachFailingAllocation(FailingAllocator::Failures failures, Attempt attempt) {
  const size_t liveBefore = FailingAllocator::LiveMatrices();
  const size_t failingAttempts = CountFailingAttempts([&](size_t passing) {
    SCOPED_TRACE("after " + std::to_string(passing) + " allocations");
    MemoryFault fault(passing, failures);
    attempt(fault);
    return fault.HasHit();
  });
  EXPECT_GT(failingAttempts, 0) << "The operation allocates nothing";
  EXPECT_EQ(FailingAllocator::LiveMatrices(), liveBefore) << "Matrices have leaked";
}

/// For suites that are run with each way of failing.
inline constexpr std::array AllFailures = {FailingAllocator::First, FailingAllocator::All};

inline std::string NameOfFailures(const testing::TestParamInfo<FailingAllocator::Failures>& test) {
  return test.param == FailingAllocator::First ? "First" : "All";
}

}  // namespace ScrollingCapture::Testing
