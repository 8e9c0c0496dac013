#include <string>
#include <vector>

#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>
#include <velscroll/codecs/Signature.h>
#include <velscroll/input/CaptureDecoding.h>
#include <velscroll/input/JpegEnd.h>
#include <velscroll/pixels/Premultiplication.h>
#include <velscroll/terminal/Silence.h>

namespace ScrollingCapture::Program {
namespace {

[[noreturn]] void RefuseDamaged() {
  throw UnusableImage("is damaged or cut short; save the capture again or leave it out");
}

cv::Mat Decode(const std::vector<unsigned char>& file) {
  try {
    const Silence silence;
    return cv::imdecode(file, cv::IMREAD_UNCHANGED);
  } catch (const cv::Exception& error) {
    if (error.code == cv::Error::StsNoMem) {
      throw;
    }
    throw UnusableImage(
        "is damaged, or larger than images may be (1048576 rows or columns, 1073741824 pixels); "
        "cut it into smaller captures");
  }
}

/// To 8 bits a channel, so that the brightest value stays the brightest.
void ReduceDepth(cv::Mat& image) {
  constexpr double Brightest = 255.0;
  constexpr double From16Bits = Brightest / 65535.0;
  switch (image.depth()) {
    case CV_8U:
      break;
    case CV_16U:
      image.convertTo(image, CV_8U, From16Bits);
      break;
    case CV_32F:
    case CV_64F:
      image.convertTo(image, CV_8U, Brightest);
      break;
    default:
      throw UnusableImage("has pixels of an unusual kind; save it as a PNG file");
  }
}

cv::Mat ToRgba(const cv::Mat& image) {
  cv::Mat capture;
  switch (image.channels()) {
    case 1:
      cv::cvtColor(image, capture, cv::COLOR_GRAY2RGBA);
      break;
    case 3:
      cv::cvtColor(image, capture, cv::COLOR_BGR2RGBA);
      break;
    case 4:
      cv::cvtColor(image, capture, cv::COLOR_BGRA2RGBA);
      break;
    default:
      throw UnusableImage("has " + std::to_string(image.channels()) +
                          " channels, but grey, colour, or colour with alpha is needed; save it as "
                          "a PNG file");
  }
  return capture;
}

}  // namespace

cv::Mat DecodeCapture(const std::vector<unsigned char>& file) {
  if (file.empty()) {
    throw UnusableImage("is empty; save the capture again or leave it out");
  }
  if (IsJpegCutShort(file)) {
    RefuseDamaged();
  }
  cv::Mat image = Decode(file);
  if (image.empty()) {
    if (SignatureOf(file)) {
      RefuseDamaged();
    }
    throw UnusableImage("is not an image that can be read; leave it out");
  }
  ReduceDepth(image);
  cv::Mat capture = ToRgba(image);
  Premultiply(capture);
  return capture;
}

}  // namespace ScrollingCapture::Program
