#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include <opencv2/core.hpp>

namespace ScrollingCapture {

/// \file
/// A pixel as one number, its key: two pixels look alike exactly when their keys are equal. All
/// pixels that are fully transparent have the key 0, whatever their colour.

/// The alpha is the last of four bytes, wherever that is in a number.
constexpr std::uint32_t AlphaMask =
    __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__ ? 0x000000FFU : 0xFF000000U;

[[gnu::always_inline]] inline std::uint32_t LoadPixel(const unsigned char* pixel) {
  std::uint32_t key = 0;
  std::memcpy(&key, pixel, sizeof key);
  return key;
}

/// Writes the keys of some pixels of 1, 3 or 4 channels.
/// @return not 0 when there is a coloured transparent pixel among them
[[gnu::always_inline]] inline std::uint32_t WritePixelKeys(const unsigned char* pixels,
                                                           int channels, int count,
                                                           std::uint32_t* keys) {
  std::uint32_t hidden = 0;
  if (channels == 4) {
    for (int i = 0; i < count; ++i) {
      const std::uint32_t pixel = LoadPixel(pixels + std::size_t{4} * static_cast<std::size_t>(i));
      const std::uint32_t key = (pixel & AlphaMask) == 0 ? 0 : pixel;
      hidden |= pixel ^ key;
      keys[i] = key;
    }
  } else if (channels == 3) {
    for (int i = 0; i < count; ++i) {
      const unsigned char* const pixel = pixels + std::size_t{3} * static_cast<std::size_t>(i);
      keys[i] = 0xFF000000U | std::uint32_t{pixel[0]} | std::uint32_t{pixel[1]} << 8 |
                std::uint32_t{pixel[2]} << 16;
    }
  } else {
    for (int i = 0; i < count; ++i) {
      keys[i] = 0xFF000000U | std::uint32_t{pixels[i]};
    }
  }
  return hidden;
}

/// The keys of all pixels of a capture (CV_32SC1).
/// @param arePixelsKeys whether the capture has four channels and no coloured transparent pixel:
///                      then its own memory is used, as far as it is aligned
cv::Mat PixelKeysOf(const cv::Mat& capture, bool arePixelsKeys);

}  // namespace ScrollingCapture
