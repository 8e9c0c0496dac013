#include <stdexcept>

#include <gtest/gtest.h>
#include <testkit/pages/Scenes.h>

#include <VelScrollingCapture/matching/PreparedCapture.h>

namespace ScrollingCapture {
namespace {

TEST(PreparedCapture, TakesLessThanATenthOfACapture) {
  for (const int type : {CV_8UC1, CV_8UC3, CV_8UC4}) {
    cv::Mat capture = Testing::DrawPhoto({1280, 720}, 1);
    cv::cvtColor(capture, capture,
                 type == CV_8UC1   ? cv::COLOR_RGBA2GRAY
                 : type == CV_8UC3 ? cv::COLOR_RGBA2RGB
                                   : cv::COLOR_RGBA2BGRA);
    ASSERT_EQ(capture.type(), type);
    const PreparedCapture prepared(capture);
    EXPECT_GT(prepared.Bytes(), 1000);
    EXPECT_LT(prepared.Bytes(), capture.total() * capture.elemSize() / 10);
  }
}

TEST(PreparedCapture, TakesNothingBeforeThereIsACapture) {
  EXPECT_EQ(PreparedCapture().Bytes(), 0);
}

TEST(PreparedCapture, RefusesWhatIsNoCapture) {
  EXPECT_THROW(PreparedCapture(cv::Mat()), std::invalid_argument);
  EXPECT_THROW(PreparedCapture(cv::Mat(20, 20, CV_32FC1, cv::Scalar())), std::invalid_argument);
}

}  // namespace
}  // namespace ScrollingCapture
