#pragma once

#include <QImage>
#include <QRect>

#include <opencv2/core.hpp>

namespace ScrollingCapture::Desktop {

/// An image with pixels of its own; null for an empty matrix.
/// @param matrix CV_8UC4: red, green, blue, premultiplied alpha
QImage ImageOf(const cv::Mat& matrix);

/// The same rectangle in Qt's words.
inline QRect RectangleOf(const cv::Rect& rectangle) {
  return {rectangle.x, rectangle.y, rectangle.width, rectangle.height};
}

}  // namespace ScrollingCapture::Desktop
