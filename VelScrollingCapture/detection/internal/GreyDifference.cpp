#include <algorithm>
#include <array>
#include <cstring>

#include <opencv2/core/hal/intrin.hpp>
#include <opencv2/imgproc.hpp>

#include <VelScrollingCapture/detection/internal/GreyDifference.h>
#include <VelScrollingCapture/detection/internal/Transforms.h>

namespace ScrollingCapture {
namespace {

constexpr size_t BytesAtOnce = 16;

/// The weighted sum of the channels that cv::cvtColor takes: ITU-R BT.601 luma in fixed point with
/// 15 fractional bits, rounded. Red and blue, and green and alpha, are weighed as pairs.
class FixedPointGrey {
 public:
  /// The grey levels of four pixels, as numbers of 32 bits.
  cv::v_uint8x16 operator()(const uchar* pixels) const {
    const cv::v_uint16x8 channels = cv::v_reinterpret_as_u16(cv::v_load(pixels));
    const cv::v_int16x8 redBlue = cv::v_reinterpret_as_s16(channels & cv::v_setall_u16(0xFF));
    const cv::v_int16x8 greenAlpha = cv::v_reinterpret_as_s16(channels >> 8);
    const cv::v_int32x4 weighted = cv::v_dotprod(greenAlpha, greenAlphaWeights,
                                                 cv::v_dotprod(redBlue, redBlueWeights, oneHalf));
    return cv::v_reinterpret_as_u8(weighted >> FractionalBits);
  }

 private:
  static constexpr int FractionalBits = 15;
  static constexpr short Red = 9798;
  static constexpr short Green = 19235;
  static constexpr short Blue = 3735;

  cv::v_int16x8 redBlueWeights{Red, Blue, Red, Blue, Red, Blue, Red, Blue};
  cv::v_int16x8 greenAlphaWeights{Green, 0, Green, 0, Green, 0, Green, 0};
  cv::v_int32x4 oneHalf = cv::v_setall_s32(1 << (FractionalBits - 1));
};

std::uint64_t SumOfRow(const uchar* first, const uchar* second, size_t bytes) {
  const FixedPointGrey grey;
  cv::v_uint32x4 sum = cv::v_setzero_u32();
  const auto add = [&](const uchar* firstPixels, const uchar* secondPixels) {
    sum += cv::v_reinterpret_as_u32(cv::v_absdiff(grey(firstPixels), grey(secondPixels)));
  };
  const size_t whole = bytes - bytes % BytesAtOnce;
  for (size_t byte = 0; byte < whole; byte += BytesAtOnce) {
    add(first + byte, second + byte);
  }
  if (whole < bytes) {
    std::array<uchar, BytesAtOnce> firstRest{};
    std::array<uchar, BytesAtOnce> secondRest{};
    std::copy(first + whole, first + bytes, firstRest.begin());
    std::copy(second + whole, second + bytes, secondRest.begin());
    add(firstRest.data(), secondRest.data());
  }
  return cv::v_reduce_sum(sum);
}

std::uint64_t SumInFixedPoint(const cv::Mat& first, const cv::Mat& second) {
  const size_t rowBytes = static_cast<size_t>(first.cols) * first.elemSize();
  std::uint64_t sum = 0;
  for (int row = 0; row < first.rows; ++row) {
    // A capture that repeats the last one is common, and so are rows of nothing but background.
    if (std::memcmp(first.ptr(row), second.ptr(row), rowBytes) != 0) {
      sum += SumOfRow(first.ptr(row), second.ptr(row), rowBytes);
    }
  }
  return sum;
}

std::uint64_t SumByConversion(const cv::Mat& first, const cv::Mat& second) {
  constexpr int RowsAtOnce = 16;  // their grey levels stay in the processor's cache
  cv::Mat difference;
  double sum = 0;  // of whole numbers, so it is exact
  for (int row = 0; row < first.rows; row += RowsAtOnce) {
    const cv::Range rows(row, std::min(row + RowsAtOnce, first.rows));
    cv::absdiff(GreyOf(first.rowRange(rows)), GreyOf(second.rowRange(rows)), difference);
    sum += cv::sum(difference)[0];
  }
  return static_cast<std::uint64_t>(sum);
}

/// Whether this build of OpenCV rounds as FixedPointGrey does. Some builds hand the conversion to a
/// library of the platform, which may not. Other weights or another rounding would change the grey
/// level of hundreds of these colours.
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

std::uint64_t SumOfGreyDifferences(const cv::Mat& first, const cv::Mat& second) {
  static const bool conversionIsFixedPoint = ConversionIsFixedPoint();
  const bool havePixelsOfFourBytes = first.type() == CV_8UC4 && second.type() == CV_8UC4;
  return conversionIsFixedPoint && havePixelsOfFourBytes ? SumInFixedPoint(first, second)
                                                         : SumByConversion(first, second);
}

}  // namespace ScrollingCapture
