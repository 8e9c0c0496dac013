#include <algorithm>
#include <cstdint>
#include <fcntl.h>
#include <limits>
#include <new>

#include <velscroll/codecs/TiffErrors.h>
#include <velscroll/output/formats/TiffEncoder.h>

namespace ScrollingCapture::Program {
namespace {

/// LZW makes at most three bytes of two; the directory and a profile have room in what is left.
bool NeedsBigTiff(const cv::Size& size, int channels) {
  constexpr double MostBytes = std::numeric_limits<std::uint32_t>::max();
  constexpr double Growth = 1.5;
  constexpr double RestOfFile = 1U << 26U;
  const double pixelBytes = double{1} * size.width * size.height * channels;
  return pixelBytes * Growth + RestOfFile > MostBytes;
}

/// So that a strip has about as many bytes, which readers hold at once.
std::uint32_t RowsPerStrip(const cv::Size& size, int channels) {
  constexpr std::int64_t StripBytes = 65536;
  const std::int64_t rows = StripBytes / (std::int64_t{size.width} * channels);
  return static_cast<std::uint32_t>(std::clamp<std::int64_t>(rows, 1, size.height));
}

tmsize_t RefuseToRead(thandle_t /*handle*/, void* /*bytes*/, tmsize_t /*length*/) { return -1; }

int KeepOpen(thandle_t /*handle*/) { return 0; }

}  // namespace

TiffEncoder::TiffEncoder(const EncodingTask& task)
    : format(task.format), name(task.header.name), sink(task.sink) {
  const TiffOptions options = QuietTiffOptions();
  if (!options) {
    throw std::bad_alloc();
  }
  const char* const mode = NeedsBigTiff(task.header.size, task.channels) ? "w8" : "w";
  tiff = TIFFClientOpenExt(name.c_str(), mode, this, RefuseToRead, Store, Seek, KeepOpen, SizeOf,
                           nullptr, nullptr, options.get());
  // Only a lack of memory lets this fail. What libtiff holds is then left alone, since closing can
  // crash: a field that there was no room for is counted all the same.
  Require(tiff != nullptr && Describe(task));
}

/// Without writing what is left, which is of no use any more.
TiffEncoder::~TiffEncoder() {
  TIFFSetMode(tiff, O_RDONLY);
  TIFFClose(tiff);
}

bool TiffEncoder::Describe(const EncodingTask& task) {
  const cv::Size& size = task.header.size;
  return TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, static_cast<std::uint32_t>(size.width)) != 0 &&
         TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, static_cast<std::uint32_t>(size.height)) != 0 &&
         TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, RowsPerStrip(size, task.channels)) != 0 &&
         TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8) != 0 &&
         TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, task.channels) != 0 &&
         TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG) != 0 &&
         TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_LZW) != 0 &&
         TIFFSetField(tiff, TIFFTAG_PREDICTOR, PREDICTOR_HORIZONTAL) != 0 &&
         DescribeColours(task.channels) && DescribeMetadata(task.header.metadata);
}

bool TiffEncoder::DescribeColours(int channels) {
  constexpr int WithAlpha = 4;
  constexpr std::uint16_t extra = EXTRASAMPLE_UNASSALPHA;
  return TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB) != 0 &&
         (channels != WithAlpha || TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, &extra) != 0);
}

bool TiffEncoder::DescribeMetadata(const ImageMetadata& metadata) {
  const auto& resolution = metadata.resolution;
  const auto& profile = metadata.colourProfile;
  return (!resolution ||
          (TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH) != 0 &&
           TIFFSetField(tiff, TIFFTAG_XRESOLUTION, resolution->horizontal / InchesPerMetre) != 0 &&
           TIFFSetField(tiff, TIFFTAG_YRESOLUTION, resolution->vertical / InchesPerMetre) != 0)) &&
         (profile.empty() ||
          TIFFSetField(tiff, TIFFTAG_ICCPROFILE, static_cast<std::uint32_t>(profile.size()),
                       profile.data()) != 0);
}

void TiffEncoder::Encode(cv::Mat& pixels) {
  bool written = true;
  for (int i = 0; i < pixels.rows && written; ++i) {
    written = TIFFWriteScanline(tiff, pixels.ptr(i), row++, 0) == 1;
  }
  Require(written);
}

void TiffEncoder::End() {
  Require(TIFFWriteDirectory(tiff) == 1);
  sink.ThrowFailure();
}

void TiffEncoder::Require(bool succeeded) const {
  if (!succeeded) {
    sink.ThrowFailure();
    ThrowEncodingFailure(format, name);
  }
}

tmsize_t TiffEncoder::Store(thandle_t handle, void* bytes, tmsize_t length) {
  auto& self = *static_cast<TiffEncoder*>(handle);
  if (length < 0 || !self.sink.WriteAt(self.position, bytes, static_cast<size_t>(length))) {
    return -1;
  }
  self.position += static_cast<toff_t>(length);
  return length;
}

toff_t TiffEncoder::Seek(thandle_t handle, toff_t offset, int origin) {
  auto& self = *static_cast<TiffEncoder*>(handle);
  const toff_t from = origin == SEEK_CUR ? self.position : origin == SEEK_END ? SizeOf(handle) : 0;
  return self.position = from + offset;
}

toff_t TiffEncoder::SizeOf(thandle_t handle) {
  return static_cast<TiffEncoder*>(handle)->sink.Size();
}

}  // namespace ScrollingCapture::Program
