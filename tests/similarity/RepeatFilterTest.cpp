#include <gtest/gtest.h>
#include <testkit/MatrixTesting.h>

#include <VelScrollingCapture/core/Utilities.h>
#include <VelScrollingCapture/similarity/RepeatFilter.h>
#include <VelScrollingCapture/storage/BasicImageProvider.h>

namespace ScrollingCapture {
namespace {

class RepeatFilter : public testing::Test {
 protected:
  RepeatFilter() { captures.Add(last); }

  cv::Mat last{100, 100, CV_8UC4, cv::Scalar(0, 0, 0, 255)};
  BasicImageProvider captures;
};

TEST_F(RepeatFilter, KeepsTheFirstCaptureEvenWhenItIsEmpty) {
  BasicImageProvider none;
  EXPECT_FALSE(RepeatsLastCapture(none, cv::Mat()));
}

TEST_F(RepeatFilter, FindsAnEqualCapture) { EXPECT_TRUE(RepeatsLastCapture(captures, last)); }

TEST_F(RepeatFilter, ComparesWithTheLastCaptureOnly) {
  cv::Mat other = Testing::NoiseCapture(last.size(), 1);
  captures.Add(other);
  EXPECT_FALSE(RepeatsLastCapture(captures, last));
}

TEST_F(RepeatFilter, DropsACaptureJustAboveTheThreshold) {
  cv::Mat capture = last.clone();
  capture.at<cv::Vec4b>(50, 50) = cv::Vec4b(254, 254, 254, 255);
  ASSERT_GT(Utilities::CalculateSimilarity(last, capture), 0.9999);
  EXPECT_TRUE(RepeatsLastCapture(captures, capture));
}

TEST_F(RepeatFilter, KeepsACaptureJustBelowTheThreshold) {
  cv::Mat capture = last.clone();
  capture.at<cv::Vec4b>(50, 50) = cv::Vec4b(255, 255, 255, 255);
  capture.at<cv::Vec4b>(50, 51) = cv::Vec4b(1, 1, 1, 255);
  ASSERT_LT(Utilities::CalculateSimilarity(last, capture), static_cast<double>(RepeatSimilarity));
  EXPECT_FALSE(RepeatsLastCapture(captures, capture));
}

TEST_F(RepeatFilter, TakesTheThresholdInSinglePrecision) {
  // One grey level 255 among 10,000 pixels: below 0.9999 in double precision by a hair at most, and
  // above the single-precision constant.
  cv::Mat capture = last.clone();
  capture.at<cv::Vec4b>(50, 50) = cv::Vec4b(255, 255, 255, 255);
  ASSERT_LE(Utilities::CalculateSimilarity(last, capture), 0.9999);
  EXPECT_TRUE(RepeatsLastCapture(captures, capture));
}

TEST_F(RepeatFilter, RefusesToCompareDifferentSizes) {
  EXPECT_THROW(RepeatsLastCapture(captures, cv::Mat()), cv::Exception);
  EXPECT_THROW(RepeatsLastCapture(captures, cv::Mat(5, 5, CV_8UC4, cv::Scalar())), cv::Exception);
}

}  // namespace
}  // namespace ScrollingCapture
