#include <algorithm>
#include <cmath>
#include <new>

#include <velscroll/output/formats/PngChunks.h>
#include <velscroll/output/formats/RowEncoder.h>

namespace ScrollingCapture::Program {
namespace {

void SetResolution(png_structp png, png_infop info, const Resolution& resolution) {
  if (std::max(resolution.horizontal, resolution.vertical) <= PNG_UINT_31_MAX) {
    png_set_pHYs(png, info, static_cast<png_uint_32>(std::lround(resolution.horizontal)),
                 static_cast<png_uint_32>(std::lround(resolution.vertical)), PNG_RESOLUTION_METER);
  }
}

/// A profile that libpng finds fault with is left out.
void SetColourProfile(png_structp png, png_infop info, const std::vector<unsigned char>& profile) {
  png_set_benign_errors(png, 1);
  png_set_iCCP(png, info, "ICC profile", PNG_COMPRESSION_TYPE_BASE, profile.data(),
               static_cast<png_uint_32>(profile.size()));
}

}  // namespace

PngChunks::PngChunks(const PictureFormat& format, const PictureHeader& header,
                     const FilePixels& pixels, OutputSink& sink)
    : format(format),
      name(header.name),
      sink(sink),
      png(png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, LeavePng, IgnorePngWarning)),
      info(png == nullptr ? nullptr : png_create_info_struct(png)) {
  try {
    Start(header, pixels);
  } catch (...) {
    png_destroy_write_struct(&png, &info);
    throw;
  }
}

PngChunks::~PngChunks() { png_destroy_write_struct(&png, &info); }

void PngChunks::Start(const PictureHeader& header, const FilePixels& pixels) {
  if (info == nullptr) {
    throw std::bad_alloc();
  }
  constexpr int BitsPerChannel = 8;
  const int colourType = pixels.alpha ? PNG_COLOR_TYPE_RGB_ALPHA : PNG_COLOR_TYPE_RGB;
  const ImageMetadata& metadata = header.metadata;
  Attempt([this, &header, &metadata, colourType] {
    png_set_write_fn(png, &sink, Store, nullptr);
    png_set_user_limits(png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
    png_set_IHDR(png, info, static_cast<png_uint_32>(header.size.width),
                 static_cast<png_uint_32>(header.size.height), BitsPerChannel, colourType,
                 PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_BASE, PNG_FILTER_TYPE_BASE);
    if (metadata.resolution) {
      SetResolution(png, info, *metadata.resolution);
    }
    if (!metadata.colourProfile.empty()) {
      SetColourProfile(png, info, metadata.colourProfile);
    }
    png_write_info(png, info);
  });
}

void PngChunks::WritePixels(const std::vector<unsigned char>& bytes) { WriteChunk("IDAT", bytes); }

void PngChunks::End() { WriteChunk("IEND", {}); }

void PngChunks::WriteChunk(const char* type, const std::vector<unsigned char>& bytes) {
  Attempt([this, type, &bytes] {
    png_write_chunk(png, reinterpret_cast<png_const_bytep>(type), bytes.data(), bytes.size());
  });
}

template <typename Call>
void PngChunks::Attempt(const Call& call) {
  if (!AttemptPng(png, call)) {
    sink.ThrowFailure();
    ThrowEncodingFailure(format, name);
  }
}

void PngChunks::Store(png_structp png, png_bytep bytes, size_t length) {
  if (!static_cast<GuardedSink*>(png_get_io_ptr(png))->Append(bytes, length)) {
    png_error(png, "the sink has failed");
  }
}

}  // namespace ScrollingCapture::Program
