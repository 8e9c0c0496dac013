#include <cstdlib>
#include <vector>

#include <gtest/gtest.h>
#include <opencv2/core.hpp>

#include <VelScrollingCapture/similarity/internal/FixedPointGrey.h>

namespace ScrollingCapture {
namespace {

/// One pixel's grey level, with nothing clever.
int GreyLevel(const uchar* pixel) {
  return (9798 * pixel[0] + 19235 * pixel[1] + 3735 * pixel[2] + 16384) >> 15;
}

std::uint64_t PlainSum(const uchar* first, const uchar* second, size_t bytes) {
  std::uint64_t sum = 0;
  for (size_t byte = 0; byte < bytes; byte += 4) {
    sum += static_cast<std::uint64_t>(std::abs(GreyLevel(first + byte) - GreyLevel(second + byte)));
  }
  return sum;
}

std::vector<uchar> Noise(size_t bytes, std::uint64_t seed) {
  std::vector<uchar> noise(bytes);
  cv::Mat view(1, static_cast<int>(bytes), CV_8UC1, noise.data());
  cv::RNG(seed).fill(view, cv::RNG::UNIFORM, 0, 256);
  return noise;
}

TEST(FixedPointGrey, IsThePlainSumForEveryLengthAndAlignment) {
  const std::vector<uchar> first = Noise(200, 1);
  const std::vector<uchar> second = Noise(200, 2);
  for (size_t start = 0; start < 16; ++start) {
    for (size_t bytes = 0; start + bytes <= 200; bytes += 4) {
      const uchar* const one = first.data() + start;
      const uchar* const other = second.data() + 16 - start;
      const size_t length = std::min(bytes, 200 - 16 + start);
      EXPECT_EQ(SumOfFixedPointGreyDifferences(one, other, length / 4 * 4),
                PlainSum(one, other, length / 4 * 4));
    }
  }
}

TEST(FixedPointGrey, IgnoresAlpha) {
  std::vector<uchar> opaque = Noise(64, 1);
  std::vector<uchar> clear = opaque;
  for (size_t alpha = 3; alpha < clear.size(); alpha += 4) {
    clear[alpha] ^= 0xFF;
  }
  EXPECT_EQ(SumOfFixedPointGreyDifferences(opaque.data(), clear.data(), 64), 0U);
}

TEST(FixedPointGrey, AddsUpMoreThan32BitsHold) {
  constexpr size_t Pixels = 17'000'000;
  const std::vector<uchar> black(4 * Pixels, 0);
  const std::vector<uchar> white(4 * Pixels, 255);
  EXPECT_EQ(SumOfFixedPointGreyDifferences(black.data(), white.data(), 4 * Pixels), 255 * Pixels);
}

}  // namespace
}  // namespace ScrollingCapture
