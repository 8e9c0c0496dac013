#pragma once

#include <vector>

#include <opencv2/core.hpp>
#include <testkit/MatrixTesting.h>

namespace ScrollingCapture::Testing {

constexpr int ScrolledCaptureHeight = 96;
constexpr int ScrolledStep = 40;

/// The page that ScrolledCaptures shows `count` captures of.
inline cv::Mat ScrolledPage(int count) {
  return NoiseCapture({120, ScrolledCaptureHeight + (count - 1) * ScrolledStep}, 42);
}

/// What a window shows that scrolls down over a page of noise, with pixels of their own.
inline std::vector<cv::Mat> ScrolledCaptures(int count) {
  const cv::Mat page = ScrolledPage(count);
  std::vector<cv::Mat> captures;
  for (int i = 0; i < count; ++i) {
    const int top = i * ScrolledStep;
    captures.push_back(page.rowRange(top, top + ScrolledCaptureHeight).clone());
  }
  return captures;
}

}  // namespace ScrollingCapture::Testing
