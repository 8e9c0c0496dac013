#pragma once

#include <string>

namespace ScrollingCapture::Program {

/// A text with the letters A to Z in lower case, whatever the locale; all others stay.
std::string LowerCase(std::string text);

}  // namespace ScrollingCapture::Program
