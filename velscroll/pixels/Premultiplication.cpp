#include <velscroll/pixels/Premultiplication.h>

namespace ScrollingCapture::Program {
namespace {

constexpr unsigned int Opaque = 255;
constexpr int AlphaChannel = 3;

template <typename Operation>
void ForEachPixel(cv::Mat& image, const Operation& operation) {
  for (int row = 0; row < image.rows; ++row) {
    auto* const pixels = image.ptr<cv::Vec4b>(row);
    for (int column = 0; column < image.cols; ++column) {
      if (pixels[column][AlphaChannel] != Opaque) {
        operation(pixels[column]);
      }
    }
  }
}

}  // namespace

void Premultiply(cv::Mat& image) {
  ForEachPixel(image, [](cv::Vec4b& pixel) {
    const unsigned int alpha = pixel[AlphaChannel];
    for (int channel = 0; channel < AlphaChannel; ++channel) {
      const unsigned int product = pixel[channel] * alpha;
      pixel[channel] = static_cast<unsigned char>((product + Opaque / 2) / Opaque);
    }
  });
}

void Unpremultiply(cv::Mat& image) {
  ForEachPixel(image, [](cv::Vec4b& pixel) {
    const unsigned int alpha = pixel[AlphaChannel];
    for (int channel = 0; channel < AlphaChannel; ++channel) {
      const unsigned int scaled = pixel[channel] * Opaque;
      pixel[channel] = static_cast<unsigned char>(alpha == 0 ? 0 : (scaled + alpha / 2) / alpha);
    }
  });
}

bool IsOpaque(const cv::Mat& image) {
  for (int row = 0; row < image.rows; ++row) {
    const auto* const pixels = image.ptr<cv::Vec4b>(row);
    for (int column = 0; column < image.cols; ++column) {
      if (pixels[column][AlphaChannel] != Opaque) {
        return false;
      }
    }
  }
  return true;
}

}  // namespace ScrollingCapture::Program
