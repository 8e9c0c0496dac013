#include <algorithm>
#include <array>

#include <opencv2/core/hal/intrin.hpp>

#include <VelScrollingCapture/similarity/internal/FixedPointGrey.h>

namespace ScrollingCapture {
namespace {

constexpr int FractionalBits = 15;
constexpr int OneHalf = 1 << (FractionalBits - 1);
constexpr short Red = 9798;
constexpr short Green = 19235;
constexpr short Blue = 3735;

/// A few million pixels.
constexpr std::size_t BytesOfBlock = std::size_t{1} << 24;

/// Grey levels in the vector types that OpenCV has for every processor. Red and blue, and green and
/// alpha, are weighed as pairs. Twice as many at a time would save less than half a millisecond on
/// a capture of 1920 x 1080, but take a second kernel and a choice between the two.
class FourGreyLevels {
 public:
  static constexpr std::size_t BytesAtOnce = 16;

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
  cv::v_int16x8 redBlueWeights{Red, Blue, Red, Blue, Red, Blue, Red, Blue};
  cv::v_int16x8 greenAlphaWeights{Green, 0, Green, 0, Green, 0, Green, 0};
  cv::v_int32x4 oneHalf = cv::v_setall_s32(OneHalf);
};

/// @param bytes  at most BytesOfBlock, so that the sum fits into 32 bits
std::uint32_t SumOfBlock(const uchar* first, const uchar* second, std::size_t bytes) {
  const FourGreyLevels grey;
  cv::v_uint32x4 sum = cv::v_setzero_u32();
  const auto add = [&](const uchar* firstPixels, const uchar* secondPixels) {
    sum += cv::v_reinterpret_as_u32(cv::v_absdiff(grey(firstPixels), grey(secondPixels)));
  };
  const std::size_t whole = bytes - bytes % FourGreyLevels::BytesAtOnce;
  for (std::size_t byte = 0; byte < whole; byte += FourGreyLevels::BytesAtOnce) {
    add(first + byte, second + byte);
  }
  if (whole < bytes) {
    std::array<uchar, FourGreyLevels::BytesAtOnce> firstRest{};
    std::array<uchar, FourGreyLevels::BytesAtOnce> secondRest{};
    std::copy(first + whole, first + bytes, firstRest.begin());
    std::copy(second + whole, second + bytes, secondRest.begin());
    add(firstRest.data(), secondRest.data());
  }
  return cv::v_reduce_sum(sum);
}

}  // namespace

std::uint64_t SumOfFixedPointGreyDifferences(const uchar* first, const uchar* second,
                                             std::size_t bytes) {
  std::uint64_t sum = 0;
  for (std::size_t byte = 0; byte < bytes; byte += BytesOfBlock) {
    sum += SumOfBlock(first + byte, second + byte, std::min(BytesOfBlock, bytes - byte));
  }
  return sum;
}

}  // namespace ScrollingCapture
