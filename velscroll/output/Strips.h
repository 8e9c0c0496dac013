#pragma once

#include <algorithm>

#include <opencv2/core.hpp>

namespace ScrollingCapture::Program {

/// How many rows of a picture are rendered at a time: about a MiB of pixels.
inline int RowsPerStrip(const cv::Size& picture) {
  constexpr int StripPixels = 262144;
  return std::clamp(StripPixels / picture.width, 1, picture.height);
}

}  // namespace ScrollingCapture::Program
