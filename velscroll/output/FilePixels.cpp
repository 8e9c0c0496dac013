#include <opencv2/imgproc.hpp>
#include <velscroll/output/FilePixels.h>
#include <velscroll/pixels/Premultiplication.h>

namespace ScrollingCapture::Program {

FilePixels::FilePixels(const PictureFormat& format, const PictureHeader& header,
                       const EncodingSettings& settings)
    : alpha(format.hasAlpha && !header.opaque && !settings.background),
      background(settings.background.value_or(White)) {}

cv::Mat FilePixels::Of(const cv::Mat& rows) const {
  cv::Mat pixels;
  if (alpha) {
    pixels = rows.clone();
    Unpremultiply(pixels);
  } else if (IsOpaque(rows)) {
    cv::cvtColor(rows, pixels, cv::COLOR_RGBA2RGB);
  } else {
    pixels = LayOn(background, rows);
  }
  return pixels;
}

}  // namespace ScrollingCapture::Program
