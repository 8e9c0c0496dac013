#pragma once

#include <cstdint>

#include <opencv2/core.hpp>

namespace ScrollingCapture {

/// `value` as an int. Throws cv::Exception when no int can hold it.
inline int Narrowed(std::int64_t value) {
  const int narrowed = cv::saturate_cast<int>(value);
  CV_Assert(narrowed == value);
  return narrowed;
}

}  // namespace ScrollingCapture
