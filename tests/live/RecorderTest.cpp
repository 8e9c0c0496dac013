#include <chrono>
#include <functional>
#include <stdexcept>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <live/Recorder.h>
#include <testkit/MatrixTesting.h>
#include <testkit/pages/Page.h>

#include "ScriptedSource.h"

namespace ScrollingCapture::Live {
namespace {

using Testing::SameBits;
using Testing::ScriptedSource;

const cv::Size Window(400, 300);

/// Ends when it is asked to; else never.
class Listener : public IRecordingListener {
 public:
  bool GoOn(const RecordingStatus& status) override {
    statuses.push_back(status);
    return !isDone || !isDone();
  }
  void CaptureKept(const cv::Mat& /*pixels*/) override { ++kept; }

  std::function<bool()> isDone;
  std::vector<RecordingStatus> statuses;
  std::size_t kept = 0;
};

class Recording : public ::testing::Test {
 protected:
  RecordingEnd Run() { return recorder.Run(); }

  void EndAfterScript() {
    listener.isDone = [this] { return source.IsDone(); };
  }

  void ExpectRows(int first, int last) {
    const auto result = session.Stitch(nullptr);
    ASSERT_EQ(result->parts.size(), 1U);
    const auto& part = *result->parts[0];
    EXPECT_TRUE(
        SameBits(part.Area({{}, part.Size()}).clone(), source.page.rowRange(first, last).clone()));
  }

  ScriptedSource source{Testing::TextPage({400, 2400}), Window};
  CaptureSession session{SessionSettings()};
  Listener listener;
  Recorder recorder{source, session, listener, MatchingSettings()};
};

TEST_F(Recording, KeepsWhatAUserScrollsOver) {
  for (int row = 0; row <= 500; row += 25) {
    source.Go({0, row});
  }
  EndAfterScript();
  const RecordingEnd end = Run();
  EXPECT_EQ(end.line, "");
  EXPECT_EQ(end.NothingCaptured(), std::nullopt);
  EXPECT_EQ(end.status.captures, listener.kept);
  ExpectRows(0, 800);
}

TEST_F(Recording, TellsTheStepWhenTheContentHasComeToRest) {
  source.Go({0, 120});
  source.Rest();
  EndAfterScript();
  Run();
  EXPECT_EQ(listener.statuses.back().lastStep, Translation(-120, 0));
}

TEST_F(Recording, KeepsWhatWasCapturedWhenTheWindowGoes) {
  source.Go({0, 100});
  source.Go({0, 180});
  source.Then([] { throw CaptureEnded("the window was closed"); });
  EXPECT_EQ(Run().line, "the window was closed");
  ExpectRows(0, 480);
}

TEST_F(Recording, GoesOnWhenTheWindowIsSeenAgain) {
  source.Go({0, 100});
  source.Then([this] { source.hindrance = "covered"; });
  source.Rest();
  source.Then([this] { source.hindrance.clear(); });
  source.Go({0, 200});
  EndAfterScript();
  Run();
  EXPECT_TRUE(
      std::any_of(listener.statuses.begin(), listener.statuses.end(),
                  [](const RecordingStatus& status) { return status.hindrance == "covered"; }));
  ExpectRows(0, 500);
}

TEST_F(Recording, OfNothingEndsWithoutCaptures) {
  source.hindrance = "covered";
  EndAfterScript();
  const RecordingEnd end = Run();
  EXPECT_EQ(end.status.captures, 0U);
  EXPECT_EQ(end.status.hindrance, "covered");
  EXPECT_EQ(end.NothingCaptured(), "nothing was captured: covered");
}

TEST_F(Recording, OfNothingTellsFirstWhatEndedIt) {
  source.hindrance = "covered";
  source.Then([] { throw CaptureEnded("the window was closed"); });
  EXPECT_EQ(Run().NothingCaptured(), "nothing was captured: the window was closed");
}

TEST_F(Recording, OfNothingMayHaveNoReason) {
  EXPECT_EQ(RecordingEnd().NothingCaptured(), "nothing was captured");
}

TEST_F(Recording, EndsByWhatTheListenerThrows) {
  listener.isDone = []() -> bool { throw std::runtime_error("enough"); };
  EXPECT_THROW(Run(), std::runtime_error);
}

TEST_F(Recording, ScrollsToTheEndByItself) {
  recorder.ScrollBy({ScrollDirection::Down, 0, Window});
  EXPECT_EQ(Run().line, "");
  ExpectRows(0, 2400);
}

TEST_F(Recording, ScrollsNoFurtherThanTheLimit) {
  recorder.ScrollBy({ScrollDirection::Down, 700, Window});
  const RecordingEnd end = Run();
  EXPECT_EQ(end.line, "");
  EXPECT_GE(end.status.seen.height, 700);
  EXPECT_LE(end.status.seen.height, 900);
}

TEST_F(Recording, TurnsTheWheelAgainOnceNothingIsInItsWay) {
  source.obstacle = "another window";
  source.Rest();
  source.Rest();
  source.Rest();
  source.Then([this] { source.obstacle.clear(); });
  recorder.ScrollBy({ScrollDirection::Down, 500, Window});
  const RecordingEnd end = Run();
  EXPECT_EQ(end.line, "");
  EXPECT_GE(end.status.seen.height, 500);
  EXPECT_TRUE(std::any_of(
      listener.statuses.begin(), listener.statuses.end(),
      [](const RecordingStatus& status) { return status.hindrance == "another window"; }));
}

TEST_F(Recording, EndsWhereOneStepOfTheWheelIsTooMuch) {
  source.pixelsOfStep = Window.height + 100;
  recorder.ScrollBy({ScrollDirection::Down, 0, Window});
  EXPECT_EQ(Run().line, "one step of the wheel scrolls further than what the window shows");
  EXPECT_EQ(listener.kept, 2U);
}

TEST_F(Recording, EndsWhenTheWheelCannotBeTurnedForTenSeconds) {
  source.obstacle = "another window";
  recorder.ScrollBy({ScrollDirection::Down, 0, Window});
  const auto begin = std::chrono::steady_clock::now();
  EXPECT_EQ(Run().line, "another window");
  EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::seconds(10));
  ExpectRows(0, Window.height);
}

}  // namespace
}  // namespace ScrollingCapture::Live
