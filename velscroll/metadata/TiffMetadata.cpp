#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <tiffio.h>

#include <velscroll/codecs/TiffErrors.h>
#include <velscroll/metadata/MetadataReaders.h>

namespace ScrollingCapture::Program {
namespace {

/// The bytes of a file, and how far they have been read.
struct Reading {
  const std::vector<unsigned char>& file;
  toff_t position = 0;
};

tmsize_t Read(thandle_t handle, void* bytes, tmsize_t length) {
  auto& reading = *static_cast<Reading*>(handle);
  const toff_t size = reading.file.size();
  const toff_t rest = size - std::min(reading.position, size);
  const toff_t count = std::min(rest, static_cast<toff_t>(std::max<tmsize_t>(length, 0)));
  if (count > 0) {
    std::memcpy(bytes, reading.file.data() + reading.position, count);
  }
  reading.position += count;
  return static_cast<tmsize_t>(count);
}

tmsize_t RefuseToWrite(thandle_t /*handle*/, void* /*bytes*/, tmsize_t /*length*/) { return -1; }

toff_t Seek(thandle_t handle, toff_t offset, int origin) {
  auto& reading = *static_cast<Reading*>(handle);
  const toff_t from = origin == SEEK_CUR   ? reading.position
                      : origin == SEEK_END ? toff_t{reading.file.size()}
                                           : 0;
  return reading.position = from + offset;
}

int Close(thandle_t /*handle*/) { return 0; }

toff_t Size(thandle_t handle) { return static_cast<Reading*>(handle)->file.size(); }

using Tiff = std::unique_ptr<TIFF, decltype(&TIFFClose)>;

/// Quietly, and without what a damaged directory would take in memory. Not mapped, so that nothing
/// beyond the end can be read.
Tiff Open(Reading& reading) {
  constexpr auto MostMemory = static_cast<tmsize_t>(4 * MostProfileBytes);
  const TiffOptions options = QuietTiffOptions();
  if (!options) {
    return {nullptr, TIFFClose};
  }
  TIFFOpenOptionsSetMaxSingleMemAlloc(options.get(), MostMemory);
  return {TIFFClientOpenExt("capture", "rm", &reading, Read, RefuseToWrite, Seek, Close, Size,
                            nullptr, nullptr, options.get()),
          TIFFClose};
}

std::optional<Resolution> ResolutionOf(TIFF* tiff) {
  float horizontal = 0;
  float vertical = 0;
  std::uint16_t unit = RESUNIT_NONE;
  if (TIFFGetField(tiff, TIFFTAG_XRESOLUTION, &horizontal) == 0 ||
      TIFFGetField(tiff, TIFFTAG_YRESOLUTION, &vertical) == 0 ||
      TIFFGetFieldDefaulted(tiff, TIFFTAG_RESOLUTIONUNIT, &unit) == 0 || unit == RESUNIT_NONE) {
    return std::nullopt;
  }
  const double units = unit == RESUNIT_CENTIMETER ? CentimetresPerMetre : InchesPerMetre;
  return Resolution{horizontal * units, vertical * units};
}

}  // namespace

ImageMetadata ReadTiffMetadata(const std::vector<unsigned char>& file) {
  ImageMetadata metadata;
  Reading reading{file};
  const Tiff tiff = Open(reading);
  if (!tiff) {
    return metadata;
  }
  metadata.resolution = ResolutionOf(tiff.get());
  std::uint32_t length = 0;
  const unsigned char* profile = nullptr;
  if (TIFFGetField(tiff.get(), TIFFTAG_ICCPROFILE, &length, &profile) != 0) {
    metadata.colourProfile.assign(profile, profile + length);
  }
  return metadata;
}

}  // namespace ScrollingCapture::Program
