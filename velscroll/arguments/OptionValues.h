#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include <opencv2/core.hpp>
#include <velscroll/terminal/Console.h>

namespace ScrollingCapture::Program {

/// A whole number within bounds. Throws BadInput, naming the option, for any other text.
unsigned int ParseNumber(const std::string& option, const std::string& text, unsigned int smallest,
                         unsigned int largest);

/// Such as 200MiB, 1G or a plain number of bytes; K, KB and KiB are all 1024 bytes. Throws
/// BadInput.
std::uint64_t ParseMemorySize(const std::string& text);

/// Width and height of --preview-size, such as 250x250. Throws BadInput.
cv::Size ParsePreviewSize(const std::string& text);

/// How loud a program is that was asked so many times to be quiet.
Loudness LoudnessOf(std::size_t timesQuiet);

}  // namespace ScrollingCapture::Program
