#include <cstdint>
#include <iostream>
#include <limits>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <testkit/MatrixTesting.h>
#include <testkit/StreamCapture.h>
#include <testkit/references/ReferenceCropping.h>

#include <VelScrollingCapture/core/Utilities.h>

namespace ScrollingCapture {
namespace {

using Testing::NoiseCapture;
using Testing::SameBits;
using Testing::StreamCapture;

const cv::Scalar Opaque(10, 20, 30, 255);

TEST(Blending, CopiesEveryVisiblePixelWithItsAlpha) {
  cv::Mat source(1, 3, CV_8UC4);
  source.at<cv::Vec4b>(0, 0) = cv::Vec4b(1, 2, 3, 255);
  source.at<cv::Vec4b>(0, 1) = cv::Vec4b(4, 5, 6, 0);
  source.at<cv::Vec4b>(0, 2) = cv::Vec4b(7, 8, 9, 1);
  cv::Mat target(2, 4, CV_8UC4, Opaque);
  Utilities::BlendImages(source, target, cv::Range(1, 2), cv::Range(1, 4));

  cv::Mat expected(2, 4, CV_8UC4, Opaque);
  expected.at<cv::Vec4b>(1, 1) = cv::Vec4b(1, 2, 3, 255);
  expected.at<cv::Vec4b>(1, 3) = cv::Vec4b(7, 8, 9, 1);
  EXPECT_TRUE(SameBits(target, expected));
}

TEST(Blending, LeavesTheTargetUnderATransparentSource) {
  cv::Mat target = NoiseCapture({12, 9}, 11);
  const cv::Mat before = target.clone();
  Utilities::BlendImages(cv::Mat(9, 12, CV_8UC4, cv::Scalar(1, 2, 3, 0)), target, {0, 9}, {0, 12});
  EXPECT_TRUE(SameBits(target, before));
}

TEST(Blending, ReplacesTheBlockUnderAnOpaqueSource) {
  cv::Mat target(9, 12, CV_8UC4, cv::Scalar(0, 0, 0, 0));
  const cv::Mat source = NoiseCapture({12, 9}, 12);
  Utilities::BlendImages(source, target, {0, 9}, {0, 12});
  EXPECT_TRUE(SameBits(target, source));
}

TEST(Blending, EqualsAMaskedCopyForRandomAlpha) {
  cv::RNG random(13);
  for (int i = 0; i < 100; ++i) {
    cv::Mat source(random.uniform(1, 40), random.uniform(1, 40), CV_8UC4);
    random.fill(source, cv::RNG::UNIFORM, cv::Scalar(0, 0, 0, -3), cv::Scalar(256, 256, 256, 4));
    cv::Mat target = NoiseCapture({60, 60}, 14);
    cv::Mat expected = target.clone();
    const cv::Range rows(7, 7 + source.rows);
    const cv::Range columns(11, 11 + source.cols);
    Utilities::BlendImages(source, target, rows, columns);
    Testing::ReferenceBlendImages(source, expected, rows, columns);
    ASSERT_TRUE(SameBits(target, expected));
  }
}

/// A copy of `image` whose first pixel lies `offset` bytes behind an address for words.
class UnalignedCopy {
 public:
  UnalignedCopy(const cv::Mat& image, size_t offset)
      : bytes(image.total() * image.elemSize() + offset),
        view(image.rows, image.cols, image.type(), bytes.data() + offset) {
    image.copyTo(view);
  }

  cv::Mat& View() { return view; }

 private:
  std::vector<uchar> bytes;
  cv::Mat view;
};

TEST(Blending, TakesPixelsAtAnyAddress) {
  cv::Mat source = NoiseCapture({9, 5}, 17);
  source(cv::Rect(2, 1, 3, 2)).setTo(cv::Scalar(0, 0, 0, 0));
  const cv::Mat target = NoiseCapture({12, 8}, 18);
  cv::Mat expected = target.clone();
  Testing::ReferenceBlendImages(source, expected, {2, 7}, {1, 10});
  for (size_t offset = 0; offset < sizeof(std::uint32_t); ++offset) {
    UnalignedCopy unalignedSource(source, offset);
    UnalignedCopy unalignedTarget(target, sizeof(std::uint32_t) - offset);
    Utilities::BlendImages(unalignedSource.View(), unalignedTarget.View(), {2, 7}, {1, 10});
    EXPECT_TRUE(SameBits(unalignedTarget.View(), expected)) << offset;
  }
}

TEST(Blending, TakesMatricesOfFloatingPointChannelsOnlyWithAnEightBitMask) {
  cv::Mat target(4, 4, CV_32FC4, cv::Scalar(0));
  EXPECT_THROW(Utilities::BlendImages(cv::Mat(4, 4, CV_32FC4, Opaque), target, {0, 4}, {0, 4}),
               cv::Exception);
}

TEST(Blending, LeavesATargetOfAnotherType) {
  cv::Mat target(4, 4, CV_8UC3, cv::Scalar(7, 7, 7));
  const cv::Mat before = target.clone();
  Utilities::BlendImages(cv::Mat(4, 4, CV_8UC4, Opaque), target, {0, 4}, {0, 4});
  EXPECT_TRUE(SameBits(target, before));
}

struct BadBlock {
  std::string name;
  cv::Range rows;
  cv::Range columns;
  std::string message;
};

void PrintTo(const BadBlock& block, std::ostream* stream) { *stream << block.name; }

class BlendingIntoABadBlock : public testing::TestWithParam<BadBlock> {};

TEST_P(BlendingIntoABadBlock, TellsOfItAndLeavesTheTarget) {
  cv::Mat target = NoiseCapture({40, 30}, 15);
  const cv::Mat before = target.clone();
  const StreamCapture errors(std::cerr);
  Utilities::BlendImages(NoiseCapture({20, 10}, 16), target, GetParam().rows, GetParam().columns);
  EXPECT_EQ(errors.Text(), GetParam().message);
  EXPECT_TRUE(SameBits(target, before));
}

constexpr auto SizeMessage =
    "The Ranges provided must be the same width and heigh as the source image\n";
constexpr auto BoundsMessage =
    "The Ranges provided must be within the bounds of the target image\n";
constexpr int Lowest = std::numeric_limits<int>::min();
constexpr int Highest = std::numeric_limits<int>::max();

INSTANTIATE_TEST_SUITE_P(
    Ranges, BlendingIntoABadBlock,
    testing::Values(BadBlock{"TooManyColumns", {0, 10}, {0, 21}, SizeMessage},
                    BadBlock{"TooFewRows", {0, 9}, {0, 20}, SizeMessage},
                    BadBlock{"WidestRange", {Lowest, Highest}, {0, 20}, SizeMessage},
                    BadBlock{"OnePastTheLastRow", {21, 31}, {0, 20}, BoundsMessage},
                    BadBlock{"OnePastTheLastColumn", {0, 10}, {21, 41}, BoundsMessage},
                    BadBlock{"BeforeTheFirstRow", {-1, 9}, {0, 20}, BoundsMessage},
                    BadBlock{"BeforeTheFirstColumn", {0, 10}, {-1, 19}, BoundsMessage}),
    [](const auto& test) { return test.param.name; });

}  // namespace
}  // namespace ScrollingCapture
