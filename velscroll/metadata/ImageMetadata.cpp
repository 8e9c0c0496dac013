#include <algorithm>
#include <cmath>
#include <string_view>

#include <velscroll/metadata/ImageMetadata.h>
#include <velscroll/metadata/MetadataReaders.h>

namespace ScrollingCapture::Program {
namespace {

using Bytes = std::vector<unsigned char>;

bool Has(const Bytes& bytes, size_t offset, std::string_view text) {
  return bytes.size() >= offset + text.size() &&
         std::equal(text.begin(), text.end(), bytes.begin() + static_cast<std::ptrdiff_t>(offset),
                    [](char expected, unsigned char found) {
                      return static_cast<unsigned char>(expected) == found;
                    });
}

ImageMetadata ReadAny(const Bytes& file) {
  if (Has(file, 0, "\x89PNG")) {
    return ReadPngMetadata(file);
  }
  if (Has(file, 0, "\xFF\xD8\xFF")) {
    return ReadJpegMetadata(file);
  }
  if (Has(file, 0, "RIFF")) {
    return ReadWebPMetadata(file);
  }
  if (Has(file, 0, "BM")) {
    return ReadBmpMetadata(file);
  }
  if (Has(file, 0, "II") || Has(file, 0, "MM")) {
    return ReadTiffMetadata(file);
  }
  return {};
}

/// ICC.1:2010, section 7.2: the header tells the profile's length, the colour space that it is for,
/// and a signature.
bool IsProfileForRgb(const Bytes& profile) {
  constexpr size_t HeaderLength = 128;
  constexpr size_t ColourSpace = 16;
  constexpr size_t Signature = 36;
  if (profile.size() < HeaderLength || profile.size() > MostProfileBytes) {
    return false;
  }
  const size_t length = (size_t{profile[0]} << 24U) + (size_t{profile[1]} << 16U) +
                        (size_t{profile[2]} << 8U) + profile[3];
  return length == profile.size() && Has(profile, ColourSpace, "RGB ") &&
         Has(profile, Signature, "acsp");
}

bool IsPlausible(double pixelsPerMetre) {
  constexpr double Most = 1e9;
  return std::isfinite(pixelsPerMetre) && pixelsPerMetre >= 1 && pixelsPerMetre <= Most;
}

}  // namespace

ImageMetadata MetadataOf(const Bytes& file) {
  ImageMetadata metadata = ReadAny(file);
  if (metadata.resolution && !(IsPlausible(metadata.resolution->horizontal) &&
                               IsPlausible(metadata.resolution->vertical))) {
    metadata.resolution.reset();
  }
  if (!IsProfileForRgb(metadata.colourProfile)) {
    metadata.colourProfile.clear();
  }
  return metadata;
}

}  // namespace ScrollingCapture::Program
