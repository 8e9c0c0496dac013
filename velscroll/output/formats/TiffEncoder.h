#pragma once

#include <cstdint>
#include <string>
#include <tiffio.h>

#include <velscroll/output/formats/RowEncoder.h>
#include <velscroll/output/staging/GuardedSink.h>

namespace ScrollingCapture::Program {

/// Writes a TIFF file by libtiff: LZW with differences of neighbours, unassociated alpha. It is a
/// BigTIFF file when it might get too large for the offsets of a plain one.
class TiffEncoder : public RowEncoder {
 public:
  explicit TiffEncoder(const EncodingTask& task);
  ~TiffEncoder() override;

  void Encode(cv::Mat& pixels) override;
  void End() override;

 private:
  bool Describe(const EncodingTask& task);
  bool DescribeColours(int channels);
  bool DescribeMetadata(const ImageMetadata& metadata);
  void Require(bool succeeded) const;

  static tmsize_t Store(thandle_t handle, void* bytes, tmsize_t length);
  static toff_t Seek(thandle_t handle, toff_t offset, int origin);
  static toff_t SizeOf(thandle_t handle);

  const PictureFormat& format;
  const std::string name;
  GuardedSink sink;
  toff_t position = 0;
  std::uint32_t row = 0;
  TIFF* tiff = nullptr;
};

}  // namespace ScrollingCapture::Program
