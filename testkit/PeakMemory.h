#pragma once

#include <algorithm>
#include <atomic>
#include <cstddef>

#include <opencv2/core.hpp>

namespace ScrollingCapture::Benchmarks {

/// Counts the memory of all matrices that are made while it lives: exact, and the same on every
/// machine. Small buffers inside of OpenCV's functions are not matrices and are not counted.
class PeakMemory {
 public:
  PeakMemory() : previous(cv::Mat::getDefaultAllocator()) {
    Counter().Restart();
    cv::Mat::setDefaultAllocator(&Counter());
  }
  PeakMemory(const PeakMemory&) = delete;
  PeakMemory& operator=(const PeakMemory&) = delete;
  ~PeakMemory() { cv::Mat::setDefaultAllocator(previous); }

  /// The most MiB that were in use at once.
  double MiB() const { return static_cast<double>(Counter().Peak()) / (1 << 20); }

 private:
  class CountingAllocator : public cv::MatAllocator {
   public:
    void Restart() {
      inUse = 0;
      peak = 0;
    }
    size_t Peak() const { return peak; }

    cv::UMatData* allocate(int dims, const int* sizes, int type, void* data, size_t* step,
                           cv::AccessFlag flags, cv::UMatUsageFlags usageFlags) const override {
      cv::UMatData* const matrix =
          cv::Mat::getStdAllocator()->allocate(dims, sizes, type, data, step, flags, usageFlags);
      matrix->currAllocator = this;
      const size_t now = inUse += matrix->size;
      size_t highest = peak;
      while (now > highest && !peak.compare_exchange_weak(highest, now)) {
      }
      return matrix;
    }

    bool allocate(cv::UMatData* matrix, cv::AccessFlag flags,
                  cv::UMatUsageFlags usageFlags) const override {
      return cv::Mat::getStdAllocator()->allocate(matrix, flags, usageFlags);
    }

    void deallocate(cv::UMatData* matrix) const override {
      inUse -= matrix->size;
      cv::Mat::getStdAllocator()->deallocate(matrix);
    }

   private:
    mutable std::atomic<size_t> inUse = 0;
    mutable std::atomic<size_t> peak = 0;
  };

  /// Lives as long as any matrix that it has made.
  static CountingAllocator& Counter() {
    static auto& counter = *new CountingAllocator;
    return counter;
  }

  cv::MatAllocator* previous;
};

/// The peak memory of one call.
template <typename Work>
double PeakMiBOf(Work work) {
  const PeakMemory memory;
  work();
  return memory.MiB();
}

}  // namespace ScrollingCapture::Benchmarks
