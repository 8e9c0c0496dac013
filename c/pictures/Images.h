#pragma once

#include <opencv2/core.hpp>

#include <VelScrollingCapture/c/images.h>

namespace ScrollingCapture::C {

/// The longest side of an image, and the most pixels, as of images that are read from files.
constexpr int LongestSide = 1 << 20;
constexpr int MostPixels = 1 << 30;

/// A copy of a caller's image as a capture. Throws InvalidArgument when it makes no sense, also
/// when a colour exceeds the alpha that it is said to be multiplied with.
/// @return CV_8UC4: red, green, blue, premultiplied alpha
cv::Mat CaptureOf(const vel_source_image* image);

/// A caller's image that is written to.
class TargetImage {
 public:
  /// Throws InvalidArgument when it makes no sense.
  explicit TargetImage(const vel_target_image* image);

  cv::Size Size() const { return pixels.size(); }

  /// Fills some rows.
  /// @param row  the first one
  /// @param rows CV_8UC4: red, green, blue, premultiplied alpha; of the image's width
  void Fill(int row, const cv::Mat& rows);

 private:
  int format;
  int alpha;
  cv::Mat pixels;  ///< the caller's
};

}  // namespace ScrollingCapture::C
