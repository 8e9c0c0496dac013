#pragma once

#include <memory>
#include <optional>
#include <string>

#include <opencv2/core.hpp>
#include <velscroll/metadata/ImageMetadata.h>
#include <velscroll/output/Colour.h>
#include <velscroll/output/PictureFormat.h>
#include <velscroll/output/staging/OutputSink.h>

namespace ScrollingCapture::Program {

/// How a picture turns into a file.
struct EncodingSettings {
  int jpegQuality = 95;  ///< 1 to 100
  int pngLevel = 3;      ///< 0 (fast) to 9 (small)

  /// What shows through transparent pixels. Without one they stay transparent, or are white in a
  /// format that has no transparency.
  std::optional<Colour> background;

  unsigned int threads = 1;  ///< that work at once; the file does not depend on it
};

/// What a file's header tells.
struct PictureHeader {
  std::string name;  ///< the file's, for messages
  cv::Size size;
  bool opaque;  ///< whether no pixel is even partly transparent
  ImageMetadata metadata;
};

/// Writes an image file from top to bottom, without holding more than some rows in memory where the
/// format allows it.
///
/// The rows are encoded on other threads where there are any: a failure may be thrown by a later
/// call. After that, or when rows are missing at the end, the file is of no use.
class RowWriter {
 public:
  explicit RowWriter(const cv::Size& size) : size(size) {}
  RowWriter(const RowWriter&) = delete;
  RowWriter& operator=(const RowWriter&) = delete;
  virtual ~RowWriter() = default;

  /// Takes the next rows. Throws Failed, Cancelled when the user stops the work, and
  /// std::bad_alloc.
  /// @param rows CV_8UC4 with the channels red, green, blue and premultiplied alpha, as wide as the
  ///             picture; its pixels are shared and must stay as they are until Finish returns
  void Write(const cv::Mat& rows);

  /// Ends the file when all rows have been written. Throws as Write does.
  void Finish();

 protected:
  int RowsToCome() const { return size.height - rowsWritten; }

 private:
  virtual void Take(const cv::Mat& rows) = 0;
  virtual void End() = 0;

  cv::Size size;
  int rowsWritten = 0;
};

/// A writer for a format, which has to hold the picture (see RequireHolds). The sink has to live
/// longer.
std::unique_ptr<RowWriter> MakeRowWriter(const PictureFormat& format, const PictureHeader& header,
                                         const EncodingSettings& settings, OutputSink& sink);

}  // namespace ScrollingCapture::Program
