#include <cstdint>

#include <velscroll/metadata/MetadataReaders.h>

namespace ScrollingCapture::Program {
namespace {

std::uint32_t NumberAt(const std::vector<unsigned char>& file, size_t offset) {
  return file[offset] + (std::uint32_t{file[offset + 1]} << 8U) +
         (std::uint32_t{file[offset + 2]} << 16U) + (std::uint32_t{file[offset + 3]} << 24U);
}

}  // namespace

ImageMetadata ReadBmpMetadata(const std::vector<unsigned char>& file) {
  constexpr size_t HeaderLength = 14;
  constexpr size_t HorizontalResolution = 38;
  constexpr size_t VerticalResolution = 42;
  constexpr size_t End = 46;
  constexpr std::uint32_t LengthOfInfoHeader = 40;
  ImageMetadata metadata;
  if (file.size() >= End && NumberAt(file, HeaderLength) >= LengthOfInfoHeader) {
    metadata.resolution = Resolution{static_cast<double>(NumberAt(file, HorizontalResolution)),
                                     static_cast<double>(NumberAt(file, VerticalResolution))};
  }
  return metadata;
}

}  // namespace ScrollingCapture::Program
