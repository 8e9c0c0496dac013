#pragma once

#include <cstdint>

#include <live/x11/XConnection.h>
#include <opencv2/core.hpp>

namespace ScrollingCapture::Live {

/// How a visual lays red, green and blue into pixels of 32 bits.
struct XPixels {
  /// Of a depth and visual. Throws CaptureFailure for screens with palettes or fewer bits.
  XPixels(const XConnection& connection, std::uint8_t depth, xcb_visualid_t visual);

  /// Where the upper 8 bits of each colour begin, from the least significant bit.
  int red = 0;
  int green = 0;
  int blue = 0;

  /// Whether the server has the bytes of a pixel in the other order than this machine.
  bool isSwapped = false;
};

/// Turns the server's pixels into a capture's: of colours with more than 8 bits the upper ones,
/// which give back every colour that was drawn with 8 bits.
/// @param rows   as many as the target has, each of as many pixels of 32 bits, without gaps
/// @param target CV_8UC4 of the size wanted: gets red, green, blue, and an alpha of 255
void ConvertPixels(const std::uint32_t* rows, const XPixels& pixels, cv::Mat& target);

}  // namespace ScrollingCapture::Live
