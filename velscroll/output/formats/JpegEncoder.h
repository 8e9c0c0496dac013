#pragma once

#include <array>
#include <string>

#include <velscroll/codecs/JpegErrors.h>
#include <velscroll/output/formats/RowEncoder.h>
#include <velscroll/output/staging/GuardedSink.h>

namespace ScrollingCapture::Program {

/// Writes a JPEG file by libjpeg. From quality 90 on the colours have the full resolution, since
/// half of it blurs coloured text; below, half of it in both directions, as usual.
class JpegEncoder : public RowEncoder {
 public:
  explicit JpegEncoder(const EncodingTask& task);
  ~JpegEncoder() override;

  void Encode(cv::Mat& pixels) override;
  void End() override;

 private:
  struct Destination : jpeg_destination_mgr {
    explicit Destination(OutputSink& sink);

    GuardedSink sink;
    std::array<JOCTET, 65536> buffer;
  };

  void Start(const EncodingTask& task);
  void SetResolution(const Resolution& resolution);

  template <typename Call>
  void Attempt(const Call& call);

  static void StartBuffer(j_compress_ptr info);
  static boolean EmptyBuffer(j_compress_ptr info);
  static void EmptyLastBuffer(j_compress_ptr info);
  static void Store(j_compress_ptr info, size_t length);

  const PictureFormat& format;
  const std::string name;
  JpegErrors errors;
  Destination destination;
  jpeg_compress_struct info = {};
};

}  // namespace ScrollingCapture::Program
