#pragma once

#include <string>

#include <opencv2/core.hpp>
#include <velscroll/output/RowWriter.h>

namespace ScrollingCapture::Program {

/// Turns rows into the bytes of a file, one call after the other, though perhaps on different
/// threads.
class RowEncoder {
 public:
  RowEncoder() = default;
  RowEncoder(const RowEncoder&) = delete;
  RowEncoder& operator=(const RowEncoder&) = delete;
  virtual ~RowEncoder() = default;

  /// Takes the next rows. Throws Failed, Cancelled or std::bad_alloc.
  /// @param pixels as FilePixels makes them; used as a workspace
  virtual void Encode(cv::Mat& pixels) = 0;

  /// Ends the file. Throws as Encode does.
  virtual void End() = 0;
};

/// Says that the library below an encoder has failed.
[[noreturn]] void ThrowEncodingFailure(const PictureFormat& format, const std::string& name);

/// Everything that an encoder is made for.
struct EncodingTask {
  const PictureFormat& format;
  const PictureHeader& header;
  const EncodingSettings& settings;
  int channels;  ///< of the pixels to come
  OutputSink& sink;
};

}  // namespace ScrollingCapture::Program
