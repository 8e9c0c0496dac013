#pragma once

#include <stdexcept>
#include <vector>

#include <opencv2/core.hpp>

namespace ScrollingCapture::Program {

/// The bytes are no usable image. The text says why and what to do, to go on after the file's name.
class UnusableImage : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// An image file's bytes as a capture: CV_8UC4 with the channels red, green, blue and premultiplied
/// alpha. Grey, palette, 16-bit and 3-channel images are converted; floating-point values count
/// from 0 to 1.
///
/// Throws UnusableImage when these are no image, or a damaged one or one that is cut short, and
/// cv::Exception when memory runs out.
cv::Mat DecodeCapture(const std::vector<unsigned char>& file);

}  // namespace ScrollingCapture::Program
