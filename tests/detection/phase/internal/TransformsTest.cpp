#include <gtest/gtest.h>
#include <testkit/MatrixTesting.h>

#include <VelScrollingCapture/detection/phase/internal/Transforms.h>

namespace ScrollingCapture {
namespace {

TEST(Transforms, AreTwiceAsLargeWhereMotionIsLookedFor) {
  const cv::Size image(31, 17);
  EXPECT_EQ(TransformSize(image, Vertical), cv::Size(32, 36));
  EXPECT_EQ(TransformSize(image, Horizontal), cv::Size(64, 18));
  EXPECT_EQ(TransformSize(image, Both), cv::Size(64, 36));
  EXPECT_EQ(TransformSize(image, static_cast<ScrollOrientation>(3)), cv::Size(32, 18));
}

TEST(Transforms, HaveTheOddPixelOfMarginBehindTheImage) {
  EXPECT_EQ(CentredStart(10, 4), 3);
  EXPECT_EQ(CentredStart(11, 4), 3);
  EXPECT_EQ(CentredStart(4, 4), 0);
}

TEST(Transforms, KeepTheSignsOfACrossPowerSpectrumWithZerosAsZeros) {
  cv::Mat first(1, 3, CV_32FC2);
  cv::Mat second(1, 3, CV_32FC2);
  // Times the conjugate: (1 + 2i)(3 - 4i) = 11 + 2i, (1 + 0i)(0 - 1i) = -1i, 0.
  first.at<cv::Vec2f>(0, 0) = {1, 2};
  second.at<cv::Vec2f>(0, 0) = {3, 4};
  first.at<cv::Vec2f>(0, 1) = {1, 0};
  second.at<cv::Vec2f>(0, 1) = {0, 1};
  first.at<cv::Vec2f>(0, 2) = {0, 0};
  second.at<cv::Vec2f>(0, 2) = {5, 5};
  cv::Mat signs;
  CrossPowerSigns(first, second, signs);
  EXPECT_EQ(signs.at<cv::Vec2f>(0, 0), cv::Vec2f(1, 1));
  EXPECT_EQ(signs.at<cv::Vec2f>(0, 1), cv::Vec2f(0, -1));
  EXPECT_EQ(signs.at<cv::Vec2f>(0, 2), cv::Vec2f(0, 0));
}

TEST(Transforms, GiveAnImageBackFromItsFullSpectrum) {
  cv::Mat grey(6, 8, CV_8UC1);
  cv::RNG(1).fill(grey, cv::RNG::UNIFORM, 0, 256);
  const cv::Mat back = InverseOfFullSpectrum(FullSpectrum(grey, {16, 12}));
  cv::Mat expected = cv::Mat::zeros(12, 16, CV_32FC1);
  grey.convertTo(expected(cv::Rect(4, 3, 8, 6)), CV_32F, 16 * 12);
  EXPECT_LT(cv::norm(back, expected, cv::NORM_INF), 0.1);
}

}  // namespace
}  // namespace ScrollingCapture
