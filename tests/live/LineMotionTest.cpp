#include <cstdint>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <live/LineMotion.h>
#include <testkit/MatrixTesting.h>

namespace ScrollingCapture::Live {
namespace {

using Lines = std::vector<std::uint64_t>;
using ::testing::Each;
using ::testing::Gt;

/// So many different lines.
Lines Different(std::uint64_t first, int count) {
  Lines lines;
  for (int i = 0; i < count; ++i) {
    lines.push_back(first + static_cast<std::uint64_t>(i));
  }
  return lines;
}

Lines Joined(Lines first, const Lines& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

TEST(LineNumbers, AreEqualForEqualRowsAndDifferentElse) {
  cv::Mat first = Testing::NoiseCapture({50, 20}, 1);
  const cv::Mat second = first.rowRange(3, 20).clone();
  const Lines numbers = LineNumbers(first);
  EXPECT_THAT(numbers, Each(Gt(0U)));
  EXPECT_EQ(Lines(numbers.begin() + 3, numbers.end()), LineNumbers(second));
  first.at<cv::Vec4b>(7, 49)[2] ^= 1;
  EXPECT_NE(LineNumbers(first)[7], numbers[7]);
}

TEST(LineNumbers, OfRowsThatRepeatTheOneAboveAreZero) {
  const cv::Mat plain(4, 30, CV_8UC4, cv::Scalar(1, 2, 3, 255));
  const Lines numbers = LineNumbers(plain);
  EXPECT_GT(numbers[0], 0U);
  EXPECT_EQ(Lines(numbers.begin() + 1, numbers.end()), Lines(3));
}

TEST(LineMotion, IsTheOneThatMostLinesSpeakFor) {
  const Lines page = Different(100, 60);
  const Lines before(page.begin(), page.begin() + 40);
  const Lines now(page.begin() + 11, page.begin() + 51);
  EXPECT_EQ(LineMotion(before, now), -11);
  EXPECT_EQ(LineMotion(now, before), 11);
}

TEST(LineMotion, IsToldAlthoughMoreLinesStandStill) {
  const Lines header = Different(1000, 50);
  const Lines page = Different(100, 40);
  const Lines before = Joined(header, Lines(page.begin(), page.begin() + 20));
  const Lines now = Joined(header, Lines(page.begin() + 5, page.begin() + 25));
  EXPECT_EQ(LineMotion(before, now), -5);
}

TEST(LineMotion, IsNoneWhereOnlyAFewLinesChange) {
  const Lines before = Different(100, 40);
  Lines now = before;
  now[5] = 1;
  EXPECT_EQ(LineMotion(before, now), 0);
}

TEST(LineMotion, IsNotToldByLinesThatOccurSeveralTimes) {
  const Lines rows = Different(100, 5);
  Lines before;
  for (int i = 0; i < 8; ++i) {
    before = Joined(before, rows);
  }
  Lines now(before.begin() + 2, before.end());
  now.resize(before.size());
  EXPECT_EQ(LineMotion(before, now), std::nullopt);
}

TEST(LineMotion, IsNotToldWhereNothingIsInCommon) {
  EXPECT_EQ(LineMotion(Different(100, 40), Different(900, 40)), std::nullopt);
}

}  // namespace
}  // namespace ScrollingCapture::Live
