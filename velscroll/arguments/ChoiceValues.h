#pragma once

#include <cstdint>
#include <string>

#include <live/ICaptureSource.h>
#include <opencv2/core.hpp>

namespace ScrollingCapture::Program {

// The values of the options that say what to capture, and how to scroll it. All throw BadInput,
// naming the option, for any other text.

/// The number of --window, such as 0x1400003 or 20971523; not 0.
std::uint32_t ParseWindow(const std::string& text);

/// The part of the screen of --region, such as 800x600+100+50: width, height, column and row, in
/// pixels, up to what a screen can have.
cv::Rect ParseRegion(const std::string& text);

/// The direction of --auto: down, up, right or left.
Live::ScrollDirection ParseDirection(const std::string& text);

}  // namespace ScrollingCapture::Program
