#include <gtest/gtest.h>
#include <opencv2/imgproc.hpp>

#include <VelScrollingCapture/core/internal/Grey.h>
#include <VelScrollingCapture/similarity/internal/GreyDifference.h>

namespace ScrollingCapture {
namespace {

/// The sum over whole grey images.
double PlainSum(const cv::Mat& first, const cv::Mat& second) {
  cv::Mat difference;
  cv::absdiff(GreyOf(first), GreyOf(second), difference);
  return cv::sum(difference)[0];
}

class GreyDifferenceOfType : public testing::TestWithParam<int> {};

TEST_P(GreyDifferenceOfType, IsTheSumOverWholeGreyImages) {
  cv::Mat first(77, 53, GetParam());
  cv::Mat second = first.clone();
  cv::RNG random(1);
  random.fill(first, cv::RNG::UNIFORM, 0, 200);
  random.fill(second, cv::RNG::UNIFORM, 0, 200);
  EXPECT_EQ(SumOfGreyDifferences(first, second), PlainSum(first, second));
  EXPECT_GT(SumOfGreyDifferences(first, second), 0);
  EXPECT_EQ(SumOfGreyDifferences(first, first.clone()), 0);
}

INSTANTIATE_TEST_SUITE_P(Types, GreyDifferenceOfType,
                         testing::Values(CV_8UC4, CV_8UC3, CV_16UC4, CV_16UC3, CV_32FC4, CV_32FC3));

TEST(GreyDifference, RefusesCapturesOfDifferentDepth) {
  const cv::Mat eight(5, 5, CV_8UC4, cv::Scalar::all(0));
  const cv::Mat floats(5, 5, CV_32FC4, cv::Scalar::all(0));
  EXPECT_THROW(SumOfGreyDifferences(eight, floats), cv::Exception);
  EXPECT_THROW(SumOfGreyDifferences(floats, eight), cv::Exception);
}

}  // namespace
}  // namespace ScrollingCapture
