#pragma once

#include <opencv2/core.hpp>
#include <velscroll/output/RowWriter.h>

namespace ScrollingCapture::Program {

/// What the pixels of a file are like.
struct FilePixels {
  FilePixels(const PictureFormat& format, const PictureHeader& header,
             const EncodingSettings& settings);

  int Channels() const { return alpha ? 4 : 3; }

  /// Rows as they are in the file: red, green, blue, and straight alpha where there is one.
  /// @param rows CV_8UC4 with the channels red, green, blue and premultiplied alpha
  /// @return CV_8UC3 or CV_8UC4, with pixels of its own
  cv::Mat Of(const cv::Mat& rows) const;

  bool alpha;         ///< whether the file has an alpha channel
  Colour background;  ///< shows through transparent pixels where it has none
};

}  // namespace ScrollingCapture::Program
