#pragma once

#include <opencv2/core.hpp>

#include <VelScrollingCapture/core/Export.h>

namespace ScrollingCapture {

/// A stitched picture, which gives its pixels by areas: whoever takes it row by row never needs
/// the memory of the whole. One thread at a time.
class VEL_EXPORT StitchedPicture {
 public:
  StitchedPicture() = default;
  StitchedPicture(const StitchedPicture&) = delete;
  StitchedPicture& operator=(const StitchedPicture&) = delete;
  virtual ~StitchedPicture() = default;

  /// Width and height in pixels.
  virtual cv::Size Size() const = 0;

  /// Whether no pixel is even partly transparent.
  virtual bool IsOpaque() const = 0;

  /// The pixels of an area, CV_8UC4: red, green, blue, premultiplied alpha; transparent where no
  /// capture shows anything. Not to be written to: they may be shared with the picture.
  ///
  /// Throws cv::Exception when the area reaches outside the picture or memory runs out, and what
  /// the captures' provider throws when a capture cannot be read.
  virtual cv::Mat Area(const cv::Rect& area) const = 0;
};

}  // namespace ScrollingCapture
