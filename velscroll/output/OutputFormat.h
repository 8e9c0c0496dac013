#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <opencv2/core.hpp>

namespace ScrollingCapture::Program {

/// A file format that the stitched image can be written in.
struct OutputFormat {
  const char* name;
  std::vector<const char*> extensions;  ///< with the dot, the usual one first
  int longestSide;                      ///< the most rows and the most columns
  std::int64_t mostBytes;               ///< the most bytes of pixels before compression
  bool hasAlpha;
  std::vector<int> encoderSettings;  ///< as OpenCV takes them
};

/// The format that a path's extension stands for. Throws BadInput when there is none.
const OutputFormat& FormatOf(const std::string& path);

/// The extensions that FormatOf knows, for messages.
std::string FormatList();

/// Throws Failed when an image of this size cannot be written in the format; the message names a
/// format that can hold it.
void RequireFits(const OutputFormat& format, const cv::Size& size, const std::string& path);

/// The bytes of an image file. Throws Failed when there is not enough memory, or the encoder fails.
/// @param image CV_8UC4 with the channels red, green, blue and premultiplied alpha; used as a
/// workspace
std::vector<unsigned char> Encode(const OutputFormat& format, cv::Mat& image,
                                  const std::string& path);

}  // namespace ScrollingCapture::Program
