#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <limits>
#include <string>
#include <thread>

#include <gtest/gtest.h>
#include <opencv2/core.hpp>

namespace ScrollingCapture::Testing {

/// Lets the thread that made it run out of memory for matrices while it lives: after a number of
/// allocations the next one, or every further one, throws as OpenCV does then (StsNoMem).
///
/// Other threads get what they ask for. Small buffers inside of OpenCV's functions are no matrices.
class FailingAllocator {
 public:
  /// Which of the allocations fail that follow those that pass.
  enum Failures { First, All };

  /// Fails nothing.
  FailingAllocator() : FailingAllocator(std::numeric_limits<size_t>::max(), First) {}

  FailingAllocator(size_t passing, Failures failures) : previous(cv::Mat::getDefaultAllocator()) {
    Allocator().Start(passing, failures);
    cv::Mat::setDefaultAllocator(&Allocator());
  }
  FailingAllocator(const FailingAllocator&) = delete;
  FailingAllocator& operator=(const FailingAllocator&) = delete;
  ~FailingAllocator() { cv::Mat::setDefaultAllocator(previous); }

  /// Whether an allocation has failed.
  bool HasFailed() const { return Allocator().HasFailed(); }

  /// How many matrices live that were made while one of these lived.
  static size_t LiveMatrices() { return Allocator().LiveMatrices(); }

 private:
  class FailingMatAllocator : public cv::MatAllocator {
   public:
    void Start(size_t passing, Failures failures) {
      thread = std::this_thread::get_id();
      allocations = 0;
      this->passing = passing;
      this->failures = failures;
    }
    bool HasFailed() const { return allocations > passing; }
    size_t LiveMatrices() const { return liveMatrices; }

    cv::UMatData* allocate(int dims, const int* sizes, int type, void* data, size_t* step,
                           cv::AccessFlag flags, cv::UMatUsageFlags usageFlags) const override {
      if (std::this_thread::get_id() == thread) {
        CountAllocation();
      }
      cv::UMatData* const matrix =
          cv::Mat::getStdAllocator()->allocate(dims, sizes, type, data, step, flags, usageFlags);
      matrix->currAllocator = this;
      ++liveMatrices;
      return matrix;
    }

    bool allocate(cv::UMatData* matrix, cv::AccessFlag flags,
                  cv::UMatUsageFlags usageFlags) const override {
      return cv::Mat::getStdAllocator()->allocate(matrix, flags, usageFlags);
    }

    void deallocate(cv::UMatData* matrix) const override {
      --liveMatrices;
      cv::Mat::getStdAllocator()->deallocate(matrix);
    }

   private:
    /// Throws without OpenCV's own message, which would mix with those that tests look at.
    void CountAllocation() const {
      const size_t before = allocations++;
      if (failures == All ? before >= passing : before == passing) {
        throw cv::Exception(cv::Error::StsNoMem, "Out of memory", "allocate", __FILE__, __LINE__);
      }
    }

    std::thread::id thread;
    size_t passing = 0;
    Failures failures = First;
    mutable size_t allocations = 0;
    mutable std::atomic<size_t> liveMatrices = 0;
  };

  /// Lives as long as any matrix that it has made.
  static FailingMatAllocator& Allocator() {
    static auto& allocator = *new FailingMatAllocator;
    return allocator;
  }

  cv::MatAllocator* previous;
};

/// For suites that are run with each way of failing.
inline constexpr std::array AllFailures = {FailingAllocator::First, FailingAllocator::All};

inline std::string NameOfFailures(const testing::TestParamInfo<FailingAllocator::Failures>& test) {
  return test.param == FailingAllocator::First ? "First" : "All";
}

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
