#pragma once

#include <optional>
#include <vector>

namespace ScrollingCapture::Program {

/// How densely an image's pixels are meant to be shown, in pixels per metre.
struct Resolution {
  double horizontal;
  double vertical;
};

constexpr double InchesPerMetre = 1 / 0.0254;
constexpr double CentimetresPerMetre = 100;

/// What an image file says of its pixels besides their values.
struct ImageMetadata {
  std::optional<Resolution> resolution;
  std::vector<unsigned char> colourProfile;  ///< an ICC profile for red, green, blue; or empty
};

/// The metadata of a PNG, JPEG, TIFF, WebP or BMP file. What is missing, damaged, of no use for
/// red-green-blue pixels, or larger than 4 MiB is left out; other bytes have no metadata.
ImageMetadata MetadataOf(const std::vector<unsigned char>& file);

}  // namespace ScrollingCapture::Program
