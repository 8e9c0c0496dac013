#include <algorithm>
#include <cstring>

#include <opencv2/imgproc.hpp>

#include <VelScrollingCapture/core/internal/Grey.h>
#include <VelScrollingCapture/similarity/internal/FixedPointGrey.h>
#include <VelScrollingCapture/similarity/internal/GreyDifference.h>

namespace ScrollingCapture {
namespace {

std::uint64_t SumInFixedPoint(const cv::Mat& first, const cv::Mat& second) {
  const size_t rowBytes = static_cast<size_t>(first.cols) * first.elemSize();
  std::uint64_t sum = 0;
  for (int row = 0; row < first.rows; ++row) {
    // A capture that repeats the last one is common, and so are rows of nothing but background.
    if (std::memcmp(first.ptr(row), second.ptr(row), rowBytes) != 0) {
      sum += SumOfFixedPointGreyDifferences(first.ptr(row), second.ptr(row), rowBytes);
    }
  }
  return sum;
}

/// A block of rows at a time, whose grey levels stay in the processor's cache. Sums of whole
/// numbers are exact, in whatever order they are added up.
double SumByConversionInBlocks(const cv::Mat& first, const cv::Mat& second) {
  constexpr int RowsAtOnce = 16;
  cv::Mat difference;
  double sum = 0;
  for (int row = 0; row < first.rows; row += RowsAtOnce) {
    const cv::Range rows(row, std::min(row + RowsAtOnce, first.rows));
    cv::absdiff(GreyOf(first.rowRange(rows)), GreyOf(second.rowRange(rows)), difference);
    sum += cv::sum(difference)[0];
  }
  return sum;
}

/// For fractions, which add up to other bits in another order.
double SumByConversion(const cv::Mat& first, const cv::Mat& second) {
  cv::Mat difference;
  cv::absdiff(GreyOf(first), GreyOf(second), difference);
  return cv::sum(difference)[0];
}

/// Whether this build of OpenCV rounds as the fixed point here does. Some builds hand the
/// conversion to a library of the platform, which may not. Other weights or another rounding would
/// change the grey level of hundreds of these colours.
bool ConversionIsFixedPoint() {
  cv::Mat colours(256, 256, CV_8UC4);
  for (int red = 0; red < colours.rows; ++red) {
    for (int green = 0; green < colours.cols; ++green) {
      const auto blue = static_cast<uchar>((7 * red + 13 * green) % 256);
      colours.at<cv::Vec4b>(red, green) = {static_cast<uchar>(red), static_cast<uchar>(green), blue,
                                           255};
    }
  }
  cv::Mat converted;
  cv::cvtColor(GreyOf(colours), converted, cv::COLOR_GRAY2RGBA);
  return SumInFixedPoint(colours, converted) == 0;
}

}  // namespace

double SumOfGreyDifferences(const cv::Mat& first, const cv::Mat& second) {
  static const bool conversionIsFixedPoint = ConversionIsFixedPoint();
  const bool havePixelsOfFourBytes = first.type() == CV_8UC4 && second.type() == CV_8UC4;
  if (conversionIsFixedPoint && havePixelsOfFourBytes) {
    return static_cast<double>(SumInFixedPoint(first, second));
  }
  return first.depth() == CV_32F ? SumByConversion(first, second)
                                 : SumByConversionInBlocks(first, second);
}

}  // namespace ScrollingCapture
