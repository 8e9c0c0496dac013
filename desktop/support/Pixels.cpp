#include <desktop/support/Pixels.h>

namespace ScrollingCapture::Desktop {

QImage ImageOf(const cv::Mat& matrix) {
  if (matrix.empty()) {
    return {};
  }
  const QImage shared(matrix.data, matrix.cols, matrix.rows, static_cast<int>(matrix.step),
                      QImage::Format_RGBA8888_Premultiplied);
  return shared.copy();
}

}  // namespace ScrollingCapture::Desktop
