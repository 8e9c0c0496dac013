#include <gtest/gtest.h>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#include <testkit/MatrixTesting.h>
#include <testkit/faults/EveryFailure.h>
#include <testkit/pages/Page.h>
#include <testkit/references/ReferenceDetector.h>

#include <VelScrollingCapture/core/Utilities.h>

namespace ScrollingCapture {
namespace {

using Testing::FailingAllocator;
using Testing::NoiseCapture;
using Testing::PlainCapture;
using Testing::TextPage;

TEST(Similarity, OfIdenticalCapturesIsExactlyOne) {
  const cv::Mat capture = NoiseCapture({37, 23}, 1);
  EXPECT_EQ(Utilities::CalculateSimilarity(capture, capture.clone()), 1.0);
}

TEST(Similarity, OfBlackAndWhiteIsExactlyZero) {
  const cv::Mat black = PlainCapture({37, 23}, 0);
  const cv::Mat white = PlainCapture({37, 23}, 255);
  EXPECT_EQ(Utilities::CalculateSimilarity(black, white), 0.0);
  EXPECT_EQ(Utilities::CalculateSimilarity(white, black), 0.0);
}

TEST(Similarity, FallsByOnePixelsShareWhenOnePixelDiffersByTheFullRange) {
  const cv::Mat black = PlainCapture({40, 25}, 0);
  cv::Mat other = black.clone();
  other.at<cv::Vec4b>(24, 39) = {255, 255, 255, 255};
  EXPECT_EQ(Utilities::CalculateSimilarity(black, other), 1.0 - 1.0 / (40 * 25));
}

TEST(Similarity, IgnoresAlpha) {
  const cv::Mat opaque = NoiseCapture({40, 25}, 1);
  cv::Mat clear = opaque.clone();
  cv::insertChannel(cv::Mat(clear.size(), CV_8UC1, cv::Scalar(0)), clear, 3);
  EXPECT_EQ(Utilities::CalculateSimilarity(opaque, clear), 1.0);
}

TEST(Similarity, IgnoresColoursOfEqualGrey) {
  const cv::Mat red(10, 10, CV_8UC4, cv::Scalar(255, 0, 0, 255));
  const cv::Mat grey(10, 10, CV_8UC4, cv::Scalar(76, 76, 76, 255));
  EXPECT_EQ(Utilities::CalculateSimilarity(red, grey), 1.0);
}

TEST(Similarity, TakesTheFirstChannelAsRed) {
  const cv::Mat red(1, 1, CV_8UC4, cv::Scalar(255, 0, 0, 255));
  const cv::Mat blue(1, 1, CV_8UC4, cv::Scalar(0, 0, 255, 255));
  const cv::Mat black(1, 1, CV_8UC4, cv::Scalar(0, 0, 0, 255));
  EXPECT_EQ(Utilities::CalculateSimilarity(red, black), 76 / (1 * -255.0 * 1) + 1.0);
  EXPECT_EQ(Utilities::CalculateSimilarity(blue, black), 29 / (1 * -255.0 * 1) + 1.0);
}

TEST(Similarity, IsTheSameDoubleAsOverWholeGreyImages) {
  for (const cv::Size size : {cv::Size(1, 1), cv::Size(1, 700), cv::Size(700, 1), cv::Size(33, 17),
                              cv::Size(640, 479), cv::Size(1921, 257)}) {
    for (const int channels : {3, 4}) {
      cv::Mat first = NoiseCapture(size, 1);
      cv::Mat second = NoiseCapture(size, 2);
      if (channels == 3) {
        cv::cvtColor(first, first, cv::COLOR_RGBA2RGB);
        cv::cvtColor(second, second, cv::COLOR_RGBA2RGB);
      }
      EXPECT_EQ(Utilities::CalculateSimilarity(first, second),
                Testing::ReferenceSimilarity(first, second))
          << size << " " << channels;
    }
  }
}

TEST(Similarity, IsTheSameDoubleWhenOnlySomeRowsDiffer) {
  const cv::Mat first = TextPage({320, 200});
  cv::Mat second = first.clone();
  for (const int row : {0, 15, 16, 100, 199}) {
    second.row(row).setTo(cv::Scalar(0, 90, 0, 255));
    EXPECT_EQ(Utilities::CalculateSimilarity(first, second),
              Testing::ReferenceSimilarity(first, second));
  }
}

/// All colours of one red level, a capture of 256 x 256.
cv::Mat ColoursWithRed(int red) {
  cv::Mat colours(256, 256, CV_8UC4);
  for (int green = 0; green < colours.rows; ++green) {
    for (int blue = 0; blue < colours.cols; ++blue) {
      colours.at<cv::Vec4b>(green, blue) = cv::Vec4b(
          static_cast<uchar>(red), static_cast<uchar>(green), static_cast<uchar>(blue), 128);
    }
  }
  return colours;
}

TEST(Similarity, FindsEveryColourEqualToItsGreyLevel) {
  for (int red = 0; red < 256; ++red) {
    const cv::Mat colours = ColoursWithRed(red);
    cv::Mat grey;
    cv::cvtColor(colours, grey, cv::COLOR_RGBA2GRAY);
    cv::cvtColor(grey, grey, cv::COLOR_GRAY2RGBA);
    ASSERT_EQ(Utilities::CalculateSimilarity(colours, grey), 1.0) << "red " << red;
  }
}

/// Also holds that the conversion of this OpenCV is the fixed point that grey levels are summed up
/// in: where it is not, they go through matrices.
TEST(Similarity, AllocatesNoMatrix) {
  const cv::Mat first = NoiseCapture({33, 17}, 1);
  const cv::Mat second = NoiseCapture({33, 17}, 2);
  const double similarity = Utilities::CalculateSimilarity(first, second);
  const FailingAllocator memory;
  EXPECT_EQ(Utilities::CalculateSimilarity(first, second), similarity);
}

/// Captures of three channels need grey images.
TEST(Similarity, IsWholeOrThrowsWhenMemoryRunsOut) {
  cv::Mat capture;
  cv::Mat other;
  cv::cvtColor(TextPage({100, 150}), capture, cv::COLOR_RGBA2RGB);
  cv::cvtColor(TextPage({100, 150}, 2), other, cv::COLOR_RGBA2RGB);
  const double expected = Utilities::CalculateSimilarity(capture, other);
  Testing::ForEachFailingAllocation(FailingAllocator::First, [&](Testing::MemoryFault& fault) {
    double similarity = 0;
    const bool failed =
        fault.HitsDuring([&] { similarity = Utilities::CalculateSimilarity(capture, other); });
    EXPECT_EQ(fault.HasThrown(), failed);
    EXPECT_EQ(similarity, failed ? 0 : expected);
    EXPECT_EQ(Utilities::CalculateSimilarity(capture, other), expected);
  });
}

TEST(Similarity, IsExactForRowsWhoseDifferencesExceed32Bits) {
  const cv::Size row(17'000'000, 1);
  EXPECT_EQ(Utilities::CalculateSimilarity(PlainCapture(row, 0), PlainCapture(row, 255)), 0.0);
}

TEST(Similarity, TakesCapturesWithGapsBetweenTheRows) {
  const cv::Mat page = TextPage({400, 300});
  const cv::Mat first = page(cv::Rect(3, 5, 301, 203));
  const cv::Mat second = page(cv::Rect(7, 15, 301, 203));
  EXPECT_EQ(Utilities::CalculateSimilarity(first, second),
            Testing::ReferenceSimilarity(first.clone(), second.clone()));
}

TEST(Similarity, TakesCapturesOfDifferentChannelCounts) {
  const cv::Mat four = NoiseCapture({30, 20}, 1);
  cv::Mat three;
  cv::cvtColor(four, three, cv::COLOR_RGBA2RGB);
  EXPECT_EQ(Utilities::CalculateSimilarity(four, three), 1.0);
}

TEST(Similarity, OfCapturesOfFractionsIsTheSameDoubleAsOverWholeGreyImages) {
  for (const int channels : {3, 4}) {
    cv::Mat first(131, 257, CV_MAKETYPE(CV_32F, channels));
    cv::Mat second = first.clone();
    cv::RNG random(1);
    random.fill(first, cv::RNG::UNIFORM, 0, 1);
    random.fill(second, cv::RNG::UNIFORM, 0, 1);
    const double similarity = Utilities::CalculateSimilarity(first, second);
    EXPECT_EQ(similarity, Testing::ReferenceSimilarity(first, second)) << channels;
    EXPECT_NE(similarity, 1.0) << channels;
  }
}

TEST(Similarity, OfCapturesOf16BitsIsTheSameDoubleAsOverWholeGreyImages) {
  cv::Mat first(131, 257, CV_16UC4);
  cv::Mat second = first.clone();
  cv::RNG random(1);
  random.fill(first, cv::RNG::UNIFORM, 0, 65536);
  random.fill(second, cv::RNG::UNIFORM, 0, 65536);
  EXPECT_EQ(Utilities::CalculateSimilarity(first, second),
            Testing::ReferenceSimilarity(first, second));
}

TEST(Similarity, PassesOnWhatOpenCVRejects) {
  const cv::Mat capture = NoiseCapture({30, 20}, 1);
  const cv::Mat shorter = NoiseCapture({30, 19}, 1);
  const cv::Mat narrower = NoiseCapture({29, 20}, 1);
  const cv::Mat sameArea = NoiseCapture({20, 30}, 1);
  const cv::Mat grey(20, 30, CV_8UC1, cv::Scalar(0));
  const cv::Mat deeper(20, 30, CV_16UC4, cv::Scalar::all(0));
  for (const cv::Mat& wrong : {shorter, narrower, sameArea, grey, deeper, cv::Mat()}) {
    EXPECT_THROW(Utilities::CalculateSimilarity(capture, wrong), cv::Exception);
    EXPECT_THROW(Utilities::CalculateSimilarity(wrong, capture), cv::Exception);
  }
  EXPECT_THROW(Utilities::CalculateSimilarity(cv::Mat(), cv::Mat()), cv::Exception);
  EXPECT_THROW(Utilities::CalculateSimilarity(grey, grey), cv::Exception);
}

}  // namespace
}  // namespace ScrollingCapture
