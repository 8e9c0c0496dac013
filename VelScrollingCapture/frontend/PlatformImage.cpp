#include <opencv2/imgproc.hpp>

#include <VelScrollingCapture/frontend/PlatformImage.h>

namespace ScrollingCapture {
namespace {

constexpr int Dimensions = 2;
constexpr std::size_t GreyBytes = 1;
constexpr std::size_t ColourBytes = 4;

/// A header over the bytes of `matrix` that takes them for pixels of `type`.
cv::Mat ReadAs(const cv::Mat& matrix, int type) {
  return {matrix.rows, matrix.cols, type, matrix.data, matrix.step[0]};
}

}  // namespace

PlatformImage PlatformImage::imageWithCVMat(const cv::Mat& matrix) {
  PlatformImage image;
  if (matrix.dims != Dimensions || matrix.empty()) {
    return image;
  }
  if (matrix.elemSize() == GreyBytes) {
    image.bitmap = ReadAs(matrix, CV_8UC1).clone();
  } else if (matrix.elemSize() == ColourBytes) {
    image.bitmap = ReadAs(matrix, CV_8UC4).clone();
  }
  return image;
}

ImageSize PlatformImage::size() const {
  return {static_cast<double>(width()), static_cast<double>(height())};
}

int PlatformImage::width() const { return bitmap.cols; }

int PlatformImage::height() const { return bitmap.rows; }

bool PlatformImage::isGrey() const { return !bitmap.empty() && bitmap.channels() == 1; }

const std::uint8_t* PlatformImage::pixels() const { return bitmap.data; }

std::size_t PlatformImage::bytesPerRow() const {
  return static_cast<std::size_t>(bitmap.cols) * bitmap.elemSize();
}

cv::Mat PlatformImage::CVMat() const {
  if (!isGrey()) {
    return bitmap.clone();
  }
  cv::Mat colour;
  cv::cvtColor(bitmap, colour, cv::COLOR_GRAY2RGBA);
  return colour;
}

cv::Mat PlatformImage::CVGrayscaleMat() const {
  if (bitmap.channels() == 1) {
    return bitmap.clone();
  }
  cv::Mat grey;
  cv::cvtColor(bitmap, grey, cv::COLOR_RGBA2GRAY);
  return grey;
}

}  // namespace ScrollingCapture
