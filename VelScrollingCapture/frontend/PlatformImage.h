#pragma once

#include <cstddef>
#include <cstdint>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/core/Export.h>

namespace ScrollingCapture {

/// A width and a height in pixels, which need not be whole.
struct ImageSize {
  double width = 0;   ///< Across the columns.
  double height = 0;  ///< Down the rows.

  /// True when both are equal.
  bool operator==(const ImageSize& other) const {
    return width == other.width && height == other.height;
  }

  /// True when either differs.
  bool operator!=(const ImageSize& other) const { return !(*this == other); }
};

/// An image as hosts hand it over and get it back: 8-bit grey, or 8-bit red, green, blue, alpha
/// with colour premultiplied by alpha.
///
/// An image never changes: copies share their pixels, and any thread may read them. Conversions
/// never share pixels with a matrix. Throws cv::Exception only when memory runs out.
class VEL_EXPORT PlatformImage {
 public:
  /// An image without a pixel.
  PlatformImage() = default;

  /// An image with a copy of a matrix's pixels; the rows of the matrix may be padded.
  /// @param matrix one byte an element for grey, four for red, green, blue, alpha; a matrix of any
  ///               other element size or of more than two dimensions gives an image without a pixel
  static PlatformImage imageWithCVMat(const cv::Mat& matrix);

  /// Width and height in pixels.
  ImageSize size() const;

  /// Pixels in a row.
  int width() const;

  /// Rows.
  int height() const;

  /// One byte a pixel, or else four.
  bool isGrey() const;

  /// The pixels, rows from top to bottom; valid while an image with these pixels lives. Null
  /// without a pixel.
  const std::uint8_t* pixels() const;

  /// The distance from one row of pixels() to the next.
  std::size_t bytesPerRow() const;

  /// The pixels as CV_8UC4: red, green, blue, alpha. Grey turns into an opaque pixel of three equal
  /// colours.
  cv::Mat CVMat() const;

  /// The pixels as CV_8UC1. Of a colour image it is the grey level of the premultiplied colours.
  cv::Mat CVGrayscaleMat() const;

 private:
  /// CV_8UC1 or CV_8UC4 without padding, not written any more once the image is made.
  cv::Mat bitmap;
};

}  // namespace ScrollingCapture
