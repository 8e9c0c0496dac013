#include <cstdlib>
#include <memory>

#include <velscroll/codecs/JpegErrors.h>
#include <velscroll/metadata/MetadataReaders.h>

namespace ScrollingCapture::Program {
namespace {

/// What a file's markers before the pixels tell, as libjpeg keeps it.
class JpegHeader {
 public:
  JpegHeader() { info.err = errors.Manager(); }
  JpegHeader(const JpegHeader&) = delete;
  JpegHeader& operator=(const JpegHeader&) = delete;
  ~JpegHeader() { jpeg_destroy_decompress(&info); }

  /// @return false when the file is damaged
  bool Read(const std::vector<unsigned char>& file) {
    constexpr unsigned int WholeMarkers = 0xFFFF;
    return errors.Attempt([this, &file] {
      jpeg_create_decompress(&info);
      jpeg_mem_src(&info, file.data(), file.size());
      jpeg_save_markers(&info, JPEG_APP0 + 2, WholeMarkers);
      jpeg_read_header(&info, TRUE);
    });
  }

  std::optional<Resolution> ReadResolution() const {
    constexpr int PerInch = 1;
    constexpr int PerCentimetre = 2;
    if (info.saw_JFIF_marker == FALSE ||
        (info.density_unit != PerInch && info.density_unit != PerCentimetre)) {
      return std::nullopt;
    }
    const double units = info.density_unit == PerInch ? InchesPerMetre : CentimetresPerMetre;
    return Resolution{info.X_density * units, info.Y_density * units};
  }

  std::vector<unsigned char> ColourProfile() {
    JOCTET* bytes = nullptr;
    unsigned int length = 0;
    const bool read =
        errors.Attempt([this, &bytes, &length] { jpeg_read_icc_profile(&info, &bytes, &length); });
    const std::unique_ptr<JOCTET, decltype(&std::free)> profile(bytes, std::free);
    return read && profile ? std::vector<unsigned char>(bytes, bytes + length)
                           : std::vector<unsigned char>();
  }

 private:
  JpegErrors errors;
  jpeg_decompress_struct info = {};
};

}  // namespace

ImageMetadata ReadJpegMetadata(const std::vector<unsigned char>& file) {
  JpegHeader header;
  if (!header.Read(file)) {
    return {};
  }
  return {header.ReadResolution(), header.ColourProfile()};
}

}  // namespace ScrollingCapture::Program
