#pragma once

#include <string>

#include <opencv2/core.hpp>

namespace ScrollingCapture::Program {

/// Reads an image file as a capture, see DecodeCapture. Throws BadInput when it cannot be read or
/// is no usable image, Failed when memory runs out, and Cancelled when the user stops the work.
cv::Mat ReadCapture(const std::string& path);

}  // namespace ScrollingCapture::Program
