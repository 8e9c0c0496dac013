#include <cmath>

#include <velscroll/codecs/Signature.h>
#include <velscroll/metadata/ImageMetadata.h>
#include <velscroll/metadata/MetadataReaders.h>

namespace ScrollingCapture::Program {
namespace {

using Bytes = std::vector<unsigned char>;

ImageMetadata ReadAny(const Bytes& file) {
  const std::optional<Signature> signature = SignatureOf(file);
  if (!signature) {
    return {};
  }
  switch (*signature) {
    case Signature::Png:
      return ReadPngMetadata(file);
    case Signature::Jpeg:
      return ReadJpegMetadata(file);
    case Signature::Tiff:
      return ReadTiffMetadata(file);
    case Signature::WebP:
      return ReadWebPMetadata(file);
    case Signature::Bmp:
      return ReadBmpMetadata(file);
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
  return length == profile.size() && HasAt(profile, ColourSpace, "RGB ") &&
         HasAt(profile, Signature, "acsp");
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
