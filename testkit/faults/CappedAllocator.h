#pragma once

#include <cstddef>

#include <opencv2/core.hpp>

namespace ScrollingCapture::Fuzzing {

/// Refuses matrices above a size as if memory had run out, so that absurd sizes cost nothing and
/// the answers to a failed allocation are exercised as well.
class CappedAllocator : public cv::MatAllocator {
 public:
  explicit CappedAllocator(size_t mostBytes) : mostBytes(mostBytes) {}

  cv::UMatData* allocate(int dims, const int* sizes, int type, void* data, size_t* step,
                         cv::AccessFlag flags, cv::UMatUsageFlags usage) const override {
    if (data == nullptr && BytesOf(dims, sizes, type) > static_cast<double>(mostBytes)) {
      CV_Error(cv::Error::StsNoMem, "More memory than a fuzz target may take");
    }
    return cv::Mat::getStdAllocator()->allocate(dims, sizes, type, data, step, flags, usage);
  }

  bool allocate(cv::UMatData* data, cv::AccessFlag flags, cv::UMatUsageFlags usage) const override {
    return cv::Mat::getStdAllocator()->allocate(data, flags, usage);
  }

  void deallocate(cv::UMatData* data) const override {
    cv::Mat::getStdAllocator()->deallocate(data);
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

  size_t mostBytes;
};

}  // namespace ScrollingCapture::Fuzzing
