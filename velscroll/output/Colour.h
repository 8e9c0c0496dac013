#pragma once

#include <string>

#include <opencv2/core.hpp>

namespace ScrollingCapture::Program {

/// An opaque colour.
struct Colour {
  unsigned char red = 0;
  unsigned char green = 0;
  unsigned char blue = 0;
};

constexpr Colour White = {255, 255, 255};

/// Reads #rgb, #rrggbb, or one of the sixteen basic colour names of CSS (white, black, silver,
/// ...); upper and lower case alike. Throws BadInput.
/// @param option what the text was given for, for the message
Colour ParseColour(const std::string& option, const std::string& text);

/// Lays rows on a colour.
/// @param rows CV_8UC4: red, green, blue, premultiplied alpha
/// @return CV_8UC3: red, green, blue
cv::Mat LayOn(const Colour& background, const cv::Mat& rows);

}  // namespace ScrollingCapture::Program
