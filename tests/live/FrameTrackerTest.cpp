#include <gtest/gtest.h>
#include <live/FrameTracker.h>
#include <testkit/MatrixTesting.h>
#include <testkit/pages/Page.h>

namespace ScrollingCapture::Live {
namespace {

using Testing::TextPage;

const cv::Size Window(900, 600);

class FrameTracking : public ::testing::Test {
 protected:
  cv::Mat At(int row, int column) const { return page({{column, row}, Window}).clone(); }

  const cv::Mat page = TextPage({2000, 2000});
  FrameTracker tracker{MatchingSettings()};
};

TEST_F(FrameTracking, TellsHowFarTheContentMovedSinceTheFollowedFrame) {
  tracker.Follow(At(100, 0));
  EXPECT_EQ(tracker.MotionTo(At(103, 0)), Translation(-3, 0));
  EXPECT_EQ(tracker.MotionTo(At(390, 0)), Translation(-290, 0));
  EXPECT_EQ(tracker.MotionTo(At(60, 0)), Translation(40, 0));
}

TEST_F(FrameTracking, FollowsContentThatMovesToTheSideByMoreThanAStrip) {
  tracker.Follow(At(0, 100));
  EXPECT_EQ(tracker.MotionTo(At(0, 500)), Translation(0, -400));
  EXPECT_EQ(tracker.MotionTo(At(0, 110)), Translation(0, -10));
}

TEST_F(FrameTracking, TellsNoMotionOfEqualFrames) {
  tracker.Follow(At(100, 0));
  EXPECT_EQ(tracker.MotionTo(At(100, 0)), Translation());
}

TEST_F(FrameTracking, TellsOfContentThatMovesInASmallPartOfTheWindow) {
  const auto withList = [this](int row) {
    cv::Mat window = At(0, 0);
    page(cv::Rect(1000, row, 170, 600)).copyTo(window(cv::Rect(20, 0, 170, 600)));
    return window;
  };
  tracker.Follow(withList(0));
  EXPECT_EQ(tracker.MotionTo(withList(50)), Translation(-50, 0));
}

TEST_F(FrameTracking, TellsNothingOfFramesWithNothingInCommon) {
  tracker.Follow(At(0, 0));
  EXPECT_EQ(tracker.MotionTo(At(1400, 0)), std::nullopt);
}

TEST_F(FrameTracking, TellsMotionAlongBothAxesWhenAsked) {
  tracker.Follow(At(100, 100));
  EXPECT_EQ(tracker.MotionTo(At(140, 170)), std::nullopt);
  EXPECT_EQ(tracker.AnyMotionTo(At(140, 170)), Translation(-40, -70));
}

}  // namespace
}  // namespace ScrollingCapture::Live
