#include <cstring>

#include <velscroll/codecs/PngErrors.h>
#include <velscroll/metadata/MetadataReaders.h>

namespace ScrollingCapture::Program {
namespace {

/// What a file's chunks before the pixels tell, as libpng keeps it.
class PngHeader {
 public:
  explicit PngHeader(const std::vector<unsigned char>& file)
      : file(file),
        png(png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, LeavePng, IgnorePngWarning)),
        info(png == nullptr ? nullptr : png_create_info_struct(png)) {}
  PngHeader(const PngHeader&) = delete;
  PngHeader& operator=(const PngHeader&) = delete;
  ~PngHeader() { png_destroy_read_struct(&png, &info, nullptr); }

  /// @return false when the file is damaged
  bool Read() {
    return info != nullptr && AttemptPng(png, [this] {
             png_set_read_fn(png, this, ReadBytes);
             png_set_user_limits(png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
             png_set_chunk_malloc_max(png, MostProfileBytes);
             png_read_info(png, info);
           });
  }

  std::optional<Resolution> ReadResolution() const {
    png_uint_32 horizontal = 0;
    png_uint_32 vertical = 0;
    int unit = PNG_RESOLUTION_UNKNOWN;
    if (png_get_pHYs(png, info, &horizontal, &vertical, &unit) == 0 ||
        unit != PNG_RESOLUTION_METER) {
      return std::nullopt;
    }
    return Resolution{static_cast<double>(horizontal), static_cast<double>(vertical)};
  }

  std::vector<unsigned char> ColourProfile() const {
    png_charp name = nullptr;
    int compression = 0;
    png_bytep profile = nullptr;
    png_uint_32 length = 0;
    if (png_get_iCCP(png, info, &name, &compression, &profile, &length) == 0) {
      return {};
    }
    return {profile, profile + length};
  }

 private:
  static void ReadBytes(png_structp png, png_bytep bytes, size_t length) {
    auto& reading = *static_cast<PngHeader*>(png_get_io_ptr(png));
    if (length > reading.file.size() - reading.position) {
      png_error(png, "cut short");
    }
    std::memcpy(bytes, reading.file.data() + reading.position, length);
    reading.position += length;
  }

  const std::vector<unsigned char>& file;
  size_t position = 0;
  png_structp png;
  png_infop info;
};

}  // namespace

ImageMetadata ReadPngMetadata(const std::vector<unsigned char>& file) {
  PngHeader header(file);
  if (!header.Read()) {
    return {};
  }
  return {header.ReadResolution(), header.ColourProfile()};
}

}  // namespace ScrollingCapture::Program
