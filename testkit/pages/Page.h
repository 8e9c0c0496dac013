#pragma once

#include <cstdint>

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

namespace ScrollingCapture::Testing {

/// A white page with dark strokes of the size of letters, the same for the same seed (CV_8UC4).
/// Windows of it (`page(cv::Rect)`) are captures that share its pixels, with gaps between the rows.
inline cv::Mat TextPage(const cv::Size& size, std::uint64_t seed = 1) {
  cv::Mat page(size, CV_8UC4, cv::Scalar::all(255));
  cv::RNG random(seed);
  for (int stroke = 0; stroke < size.area() / 60; ++stroke) {
    const cv::Point corner(random.uniform(0, size.width), random.uniform(0, size.height));
    const cv::Size extent(random.uniform(1, 6), random.uniform(1, 9));
    const cv::Scalar ink(random.uniform(0, 120), random.uniform(0, 120), random.uniform(0, 120),
                         255);
    cv::rectangle(page, {corner, extent}, ink, cv::FILLED);
  }
  return page;
}

/// An opaque capture of one colour (CV_8UC4).
inline cv::Mat PlainCapture(const cv::Size& size, int level) {
  return {size, CV_8UC4, cv::Scalar(level, level, level, 255)};
}

}  // namespace ScrollingCapture::Testing
