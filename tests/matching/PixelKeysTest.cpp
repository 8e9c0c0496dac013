#include <vector>

#include <gtest/gtest.h>
#include <testkit/pages/Scenes.h>

#include <VelScrollingCapture/matching/internal/PixelKeys.h>

namespace ScrollingCapture {
namespace {

TEST(PixelKeys, DifferExactlyWherePixelsDo) {
  for (const int type : {CV_8UC1, CV_8UC3, CV_8UC4}) {
    cv::Mat pixels(1, 3, type, cv::Scalar(10, 20, 30, 255));
    pixels.col(2).setTo(cv::Scalar(11, 20, 30, 255));
    const cv::Mat keys = PixelKeysOf(pixels, false);
    EXPECT_EQ(keys.at<int>(0, 0), keys.at<int>(0, 1));
    EXPECT_NE(keys.at<int>(0, 0), keys.at<int>(0, 2));
  }
}

TEST(PixelKeys, AreZeroWhereNothingIsSeen) {
  const cv::Mat pixels(2, 2, CV_8UC4, cv::Scalar(10, 20, 30, 0));
  EXPECT_EQ(cv::countNonZero(PixelKeysOf(pixels, false)), 0);
}

TEST(PixelKeys, ShareTheMemoryOfPixelsThatAreKeysAlready) {
  const cv::Mat pixels = Testing::DrawPhoto({20, 20}, 1);
  EXPECT_EQ(PixelKeysOf(pixels, true).data, pixels.data);
  EXPECT_EQ(cv::norm(PixelKeysOf(pixels, true), PixelKeysOf(pixels, false)), 0);
}

TEST(PixelKeys, TakeMemoryThatIsNotAligned) {
  std::vector<unsigned char> memory(4 * 6 + 1, 255);
  const cv::Mat pixels(2, 3, CV_8UC4, memory.data() + 1);
  EXPECT_EQ(PixelKeysOf(pixels, true).at<int>(1, 2), -1);
}

}  // namespace
}  // namespace ScrollingCapture
