#pragma once

#include <cstddef>

#include <opencv2/core.hpp>

namespace ScrollingCapture::Testing {

/// OpenCV's own allocator of matrices, watched: a derived class hears of every matrix that is made
/// and released, and can refuse one. Small buffers inside of OpenCV's functions are no matrices.
///
/// It must outlive every matrix that it has made.
class ForwardingAllocator : public cv::MatAllocator {
 public:
  cv::UMatData* allocate(int dims, const int* sizes, int type, void* data, size_t* step,
                         cv::AccessFlag flags, cv::UMatUsageFlags usage) const override {
    if (data == nullptr) {
      BeforeAllocation(BytesOf(dims, sizes, type));
    }
    cv::UMatData* const matrix =
        cv::Mat::getStdAllocator()->allocate(dims, sizes, type, data, step, flags, usage);
    matrix->currAllocator = this;
    AfterAllocation(matrix->size);
    return matrix;
  }

  bool allocate(cv::UMatData* matrix, cv::AccessFlag flags,
                cv::UMatUsageFlags usage) const override {
    return cv::Mat::getStdAllocator()->allocate(matrix, flags, usage);
  }

  void deallocate(cv::UMatData* matrix) const override {
    BeforeRelease(matrix->size);
    cv::Mat::getStdAllocator()->deallocate(matrix);
  }

 protected:
  /// Refuses a matrix by calling Refuse().
  virtual void BeforeAllocation(double /*bytes*/) const {}
  virtual void AfterAllocation(size_t /*bytes*/) const {}
  virtual void BeforeRelease(size_t /*bytes*/) const {}

  /// Throws what OpenCV throws when memory has run out, without its message on the standard error
  /// stream, which would mix with those that tests look at.
  [[noreturn]] static void Refuse() {
    throw cv::Exception(cv::Error::StsNoMem, "Out of memory", "allocate", __FILE__, __LINE__);
  }

 private:
  /// No overflow in floating point.
  static double BytesOf(int dims, const int* sizes, int type) {
    double bytes = CV_ELEM_SIZE(type);
    for (int i = 0; i < dims; ++i) {
      bytes *= sizes[i];
    }
    return bytes;
  }
};

/// Has matrices made by an allocator while it lives.
class AllocatorInUse {
 public:
  explicit AllocatorInUse(cv::MatAllocator& allocator) : previous(cv::Mat::getDefaultAllocator()) {
    cv::Mat::setDefaultAllocator(&allocator);
  }
  AllocatorInUse(const AllocatorInUse&) = delete;
  AllocatorInUse& operator=(const AllocatorInUse&) = delete;
  ~AllocatorInUse() { cv::Mat::setDefaultAllocator(previous); }

 private:
  cv::MatAllocator* const previous;
};

}  // namespace ScrollingCapture::Testing
