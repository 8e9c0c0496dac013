#pragma once

#include <string>

#include <opencv2/core.hpp>

namespace ScrollingCapture::Program {

/// Reads an image file as a capture: CV_8UC4 with the channels red, green, blue and premultiplied
/// alpha. Grey, palette, 16-bit and 3-channel images are converted; floating-point values count
/// from 0 to 1.
///
/// Throws BadInput when the file cannot be read, is no image, is damaged or is cut short.
cv::Mat ReadCapture(const std::string& path);

}  // namespace ScrollingCapture::Program
