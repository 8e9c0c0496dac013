#pragma once

#include <string>

#include <opencv2/core.hpp>
#include <velscroll/metadata/ImageMetadata.h>

namespace ScrollingCapture::Program {

/// What an image file holds.
struct CaptureImage {
  cv::Mat pixels;  ///< as DecodeCapture gives them
  ImageMetadata metadata;
};

/// Reads an image file as a capture. Throws BadInput when it cannot be read or is no usable image,
/// Failed when memory runs out, and Cancelled when the user stops the work.
CaptureImage ReadCapture(const std::string& path);

}  // namespace ScrollingCapture::Program
