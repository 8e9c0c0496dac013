#include <chrono>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <velscroll/stitch/StitchListener.h>

namespace ScrollingCapture {
namespace {

using Program::StitchListener;
using ::testing::ElementsAre;

constexpr std::chrono::milliseconds Moment(20);
constexpr double MomentInSeconds = 0.02;

bool GoOn(int /*percent*/) { return true; }

TEST(StitchListener, PassesTheProgressAndTheAnswerOn) {
  std::vector<int> told;
  StitchListener listener([&told](int percent) {
    told.push_back(percent);
    return percent < 50;
  });
  EXPECT_TRUE(listener.ProgressCallback(20));
  EXPECT_FALSE(listener.ProgressCallback(50));
  EXPECT_THAT(told, ElementsAre(20, 50));
}

TEST(StitchListener, NotesWhyAStitchFailed) {
  StitchListener listener(GoOn);
  EXPECT_EQ(listener.Error(), std::nullopt);
  EXPECT_FALSE(listener.StitchingError(IStitcherListener::ImageProcessingFailed, true));
  EXPECT_EQ(listener.Error(), IStitcherListener::ImageProcessingFailed);
}

TEST(StitchListener, TakesTheFirstCallOnTheStitchingThreadForTheEndOfDetection) {
  StitchListener listener(GoOn);
  std::thread([&listener] { listener.ProgressCallback(10); }).join();
  std::this_thread::sleep_for(Moment);
  listener.ProgressCallback(50);
  std::this_thread::sleep_for(2 * Moment);
  listener.ProgressCallback(100);
  Program::StageSeconds seconds;
  listener.FillTimes(seconds);
  EXPECT_GE(seconds.detection, MomentInSeconds);
  EXPECT_GE(seconds.composing, 2 * MomentInSeconds);
}

TEST(StitchListener, HasNoTimeOfDetectionWhenOnlyWorkersHaveCalled) {
  StitchListener listener(GoOn);
  std::thread([&listener] { listener.ProgressCallback(10); }).join();
  std::this_thread::sleep_for(Moment);
  Program::StageSeconds seconds;
  listener.FillTimes(seconds);
  EXPECT_EQ(seconds.detection, 0);
  EXPECT_GE(seconds.composing, MomentInSeconds);
}

}  // namespace
}  // namespace ScrollingCapture
