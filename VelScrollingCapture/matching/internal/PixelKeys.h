#pragma once

#include <cstdint>

#include <opencv2/core.hpp>

namespace ScrollingCapture {

/// A pixel as one number: two pixels look alike exactly when their keys are equal. All pixels that
/// are fully transparent have the key 0, whatever their colour.
///
/// @param pixels   of 1, 3 or 4 channels
/// @param count    how many pixels
void WritePixelKeys(const unsigned char* pixels, int channels, int count, std::uint32_t* keys);

/// The keys of all pixels of a capture (CV_32SC1). They share the memory of a capture of four
/// channels that has no coloured transparent pixel.
cv::Mat PixelKeysOf(const cv::Mat& capture);

}  // namespace ScrollingCapture
