#include <algorithm>
#include <array>

#include <opencv2/core/hal/intrin.hpp>
#include <opencv2/core/utility.hpp>

#include <VelScrollingCapture/similarity/internal/FixedPointGrey.h>

#if defined(__x86_64__) && defined(__GNUC__)
#include <immintrin.h>
#define SCROLLING_CAPTURE_WITH_AVX2 1
#else
#define SCROLLING_CAPTURE_WITH_AVX2 0
#endif

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
/// alpha, are weighed as pairs.
class PortableGrey {
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
  const PortableGrey grey;
  cv::v_uint32x4 sum = cv::v_setzero_u32();
  const auto add = [&](const uchar* firstPixels, const uchar* secondPixels) {
    sum += cv::v_reinterpret_as_u32(cv::v_absdiff(grey(firstPixels), grey(secondPixels)));
  };
  const std::size_t whole = bytes - bytes % PortableGrey::BytesAtOnce;
  for (std::size_t byte = 0; byte < whole; byte += PortableGrey::BytesAtOnce) {
    add(first + byte, second + byte);
  }
  if (whole < bytes) {
    std::array<uchar, PortableGrey::BytesAtOnce> firstRest{};
    std::array<uchar, PortableGrey::BytesAtOnce> secondRest{};
    std::copy(first + whole, first + bytes, firstRest.begin());
    std::copy(second + whole, second + bytes, secondRest.begin());
    add(firstRest.data(), secondRest.data());
  }
  return cv::v_reduce_sum(sum);
}

std::uint64_t SumWithPortableVectors(const uchar* first, const uchar* second, std::size_t bytes) {
  std::uint64_t sum = 0;
  for (std::size_t byte = 0; byte < bytes; byte += BytesOfBlock) {
    sum += SumOfBlock(first + byte, second + byte, std::min(BytesOfBlock, bytes - byte));
  }
  return sum;
}

#if SCROLLING_CAPTURE_WITH_AVX2

/// The grey levels of eight pixels, as numbers of 32 bits; the same steps as in PortableGrey.
[[gnu::target("avx2")]] inline __m256i GreyOfEightPixels(const uchar* pixels) {
  const __m256i channels = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(pixels));
  const __m256i redBlue = _mm256_and_si256(channels, _mm256_set1_epi16(0xFF));
  const __m256i greenAlpha = _mm256_srli_epi16(channels, 8);
  const __m256i weightedRedBlue = _mm256_madd_epi16(redBlue, _mm256_set1_epi32(Blue << 16 | Red));
  const __m256i weightedGreen = _mm256_madd_epi16(greenAlpha, _mm256_set1_epi32(Green));
  const __m256i weighted = _mm256_add_epi32(
      weightedGreen, _mm256_add_epi32(weightedRedBlue, _mm256_set1_epi32(OneHalf)));
  return _mm256_srli_epi32(weighted, FractionalBits);
}

[[gnu::target("avx2")]] std::uint64_t SumWithAvx2(const uchar* first, const uchar* second,
                                                  std::size_t bytes) {
  constexpr std::size_t BytesAtOnce = sizeof(__m256i);
  const std::size_t whole = bytes - bytes % BytesAtOnce;
  __m256i sums = _mm256_setzero_si256();
  for (std::size_t byte = 0; byte < whole; byte += BytesAtOnce) {
    const __m256i differences =
        _mm256_sad_epu8(GreyOfEightPixels(first + byte), GreyOfEightPixels(second + byte));
    sums = _mm256_add_epi64(sums, differences);
  }
  std::array<std::uint64_t, 4> parts{};
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(parts.data()), sums);
  return parts[0] + parts[1] + parts[2] + parts[3] +
         SumWithPortableVectors(first + whole, second + whole, bytes - whole);
}

#endif

using SumOfRows = std::uint64_t (*)(const uchar* first, const uchar* second, std::size_t bytes);

SumOfRows FastestSum() {
#if SCROLLING_CAPTURE_WITH_AVX2
  if (cv::checkHardwareSupport(CV_CPU_AVX2)) {
    return SumWithAvx2;
  }
#endif
  return SumWithPortableVectors;
}

}  // namespace

std::uint64_t SumOfFixedPointGreyDifferences(const uchar* first, const uchar* second,
                                             std::size_t bytes) {
  static const SumOfRows sum = FastestSum();
  return sum(first, second, bytes);
}

}  // namespace ScrollingCapture
