#pragma once

#include <algorithm>

#include <opencv2/core.hpp>

namespace ScrollingCapture {

/// Calls work(range) for consecutive ranges of at most `step` that cover 0 ... count.
template <typename Work>
void ForEachBlock(int count, int step, Work work) {
  for (int start = 0; start < count; start += step) {
    work(cv::Range(start, std::min(start + step, count)));
  }
}

}  // namespace ScrollingCapture
