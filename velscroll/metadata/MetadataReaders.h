#pragma once

#include <cstddef>
#include <vector>

#include <velscroll/metadata/ImageMetadata.h>

namespace ScrollingCapture::Program {

/// The most bytes of a colour profile that are taken over; usual ones have 0.5 to 600 KB.
constexpr size_t MostProfileBytes = size_t{4} << 20U;

// What a file of a format tells, unchecked; nothing when it is damaged.
ImageMetadata ReadPngMetadata(const std::vector<unsigned char>& file);
ImageMetadata ReadJpegMetadata(const std::vector<unsigned char>& file);
ImageMetadata ReadTiffMetadata(const std::vector<unsigned char>& file);
ImageMetadata ReadWebPMetadata(const std::vector<unsigned char>& file);
ImageMetadata ReadBmpMetadata(const std::vector<unsigned char>& file);

}  // namespace ScrollingCapture::Program
