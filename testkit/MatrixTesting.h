#pragma once

#include <cstdint>
#include <cstring>

#include <opencv2/core.hpp>

namespace ScrollingCapture::Testing {

/// Equal size, type and bytes.
inline bool SameBits(const cv::Mat& first, const cv::Mat& second) {
  if (first.size() != second.size() || first.type() != second.type()) {
    return false;
  }
  if (first.empty()) {
    return true;
  }
  const size_t rowBytes = static_cast<size_t>(first.cols) * first.elemSize();
  for (int row = 0; row < first.rows; ++row) {
    if (std::memcmp(first.ptr(row), second.ptr(row), rowBytes) != 0) {
      return false;
    }
  }
  return true;
}

/// Random opaque pixels (CV_8UC4), the same for the same seed.
inline cv::Mat NoiseCapture(const cv::Size& size, std::uint64_t seed) {
  cv::Mat capture(size, CV_8UC4);
  cv::RNG random(seed);
  random.fill(capture, cv::RNG::UNIFORM, cv::Scalar(0, 0, 0, 255), cv::Scalar(256, 256, 256, 256));
  return capture;
}

}  // namespace ScrollingCapture::Testing
