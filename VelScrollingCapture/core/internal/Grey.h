#pragma once

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

namespace ScrollingCapture {

/// The grey image, of the same depth, of a capture with the channels red, green, blue and perhaps
/// alpha. Throws cv::Exception for anything else.
inline cv::Mat GreyOf(const cv::Mat& capture) {
  cv::Mat grey;
  cv::cvtColor(capture, grey, cv::COLOR_RGBA2GRAY);
  return grey;
}

}  // namespace ScrollingCapture
