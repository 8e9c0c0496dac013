#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

namespace ScrollingCapture::Testing {

/// An ICC profile that is correct as far as its header and its table without tags go.
/// @param colourSpace four letters
inline std::vector<unsigned char> ColourProfile(const std::string& colourSpace, size_t length) {
  std::vector<unsigned char> profile(length, 0);
  const auto put = [&profile](size_t offset, const std::string& text) {
    std::copy(text.begin(), text.end(), profile.begin() + static_cast<std::ptrdiff_t>(offset));
  };
  for (size_t i = 132; i < length; ++i) {
    profile[i] = static_cast<unsigned char>(i * i >> 4U);
  }
  for (size_t i = 0; i < 4; ++i) {
    profile[i] = static_cast<unsigned char>(length >> (8 * (3 - i)));
  }
  put(8, std::string("\x02\x40", 2));
  put(12, "mntr");
  put(16, colourSpace);
  put(20, "XYZ ");
  put(36, "acsp");
  put(68, std::string("\x00\x00\xF6\xD6\x00\x01\x00\x00\x00\x00\xD3\x2D", 12));
  return profile;
}

}  // namespace ScrollingCapture::Testing
