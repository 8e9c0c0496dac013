#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <opencv2/core.hpp>

namespace ScrollingCapture::Program {

/// A file format that a picture can be written in.
struct PictureFormat {
  enum Kind { Png, Tiff, Bmp, WebP, Jpeg };

  Kind kind;
  const char* name;
  std::vector<const char*> extensions;  ///< with the dot, the usual one first
  int longestSide;                      ///< the most rows and the most columns
  std::int64_t mostBytes;               ///< the most bytes of pixels before compression
  bool hasAlpha;
};

/// The format that a path's extension stands for; PNG for "-", standard output. Throws BadInput
/// when there is none.
const PictureFormat& PictureFormatOf(const std::string& path);

/// The extensions that PictureFormatOf knows, for messages.
std::string PictureFormatList();

/// Throws Failed when a picture of this size cannot be written in the format. The message tells of
/// --split, where fewer rows in a file would do, and of a format that can hold the picture.
void RequireHolds(const PictureFormat& format, const cv::Size& size, const std::string& path);

}  // namespace ScrollingCapture::Program
