#include <atomic>
#include <cstdlib>
#include <functional>
#include <future>
#include <optional>
#include <system_error>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <testkit/MatrixTesting.h>
#include <testkit/RecordingListener.h>
#include <testkit/pages/NumberedCaptures.h>
#include <testkit/pages/Page.h>

#include <VelScrollingCapture/frontend/VelScrollingCapture.h>

#include "InterposedFunctions.h"

namespace ScrollingCapture {
namespace {

using testing::ElementsAre;
using Testing::Interposition;
using testing::IsEmpty;
using Testing::NumberedCaptures;
using Testing::NumberedPairsDetector;
using Testing::RecordingListener;
using Testing::SameBits;
using Testing::ScopedInterposition;
using Testing::TextPage;

/// Runs an action whenever the thread that made this waits for a condition.
Interposition WhenTheCallerWaits(std::function<void()> action) {
  const auto caller = std::this_thread::get_id();
  return {nullptr, nullptr, [caller, action = std::move(action)] {
            if (std::this_thread::get_id() == caller) {
              action();
            }
          }};
}

TEST(PhaseCorrelationTranslationDetectorWorkers, StartOneMoreWhenCancelledWhileTheDispatcherWaits) {
  BasicImageProvider captures = NumberedCaptures(5);
  std::promise<void> dispatcherWaits;
  bool waited = false;
  const ScopedInterposition interposition(WhenTheCallerWaits([&] {
    if (!waited) {
      waited = true;
      dispatcherWaits.set_value();
    }
  }));
  std::vector<size_t> started;
  // The first pair ends only when the dispatcher waits; its progress call is then refused.
  NumberedPairsDetector detector(1, [&](size_t pair) {
    if (pair == 0) {
      dispatcherWaits.get_future().wait();
    }
    started.push_back(pair);
    return Translation();
  });
  RecordingListener listener(0);
  ITranslationDetector& interface = detector;
  EXPECT_THAT(interface.DetectTranslation(captures, &listener, 0, 100), IsEmpty());
  EXPECT_THAT(started, ElementsAre(0, 1));
  EXPECT_THAT(listener.calls, ElementsAre("progress 25", "error 4 false"));
}

TEST(PhaseCorrelationTranslationDetectorWorkers, AreWaitedForAsSoonAsTheirLimitRuns) {
  constexpr int Limit = 3;
  BasicImageProvider captures = NumberedCaptures(13);
  int starts = 0;
  std::promise<int> startsBeforeTheWait;
  bool waited = false;
  Interposition interposition = WhenTheCallerWaits([&] {
    if (!waited) {
      waited = true;
      startsBeforeTheWait.set_value(starts);
    }
  });
  interposition.threadStarts = [&] {
    ++starts;
    return true;
  };
  const ScopedInterposition scoped(interposition);
  const std::shared_future<int> limitRuns = startsBeforeTheWait.get_future().share();
  std::atomic<int> running = 0;
  std::atomic<int> exceeded = 0;
  NumberedPairsDetector detector(Limit, [&](size_t) {
    exceeded += ++running > Limit ? 1 : 0;
    limitRuns.wait();
    --running;
    return Translation();
  });
  ITranslationDetector& interface = detector;
  EXPECT_EQ(interface.DetectTranslation(captures, nullptr, 0, 100).size(), 12);
  EXPECT_EQ(limitRuns.get(), Limit);
  EXPECT_EQ(starts, 12);
  EXPECT_EQ(exceeded, 0);
}

TEST(PhaseCorrelationTranslationDetectorWorkers, AreJoinedWhenAnotherOneCannotBeStarted) {
  BasicImageProvider captures = NumberedCaptures(5);
  int starts = 0;
  std::promise<void> thirdStartFailed;
  const std::shared_future<void> failure = thirdStartFailed.get_future().share();
  const ScopedInterposition interposition({nullptr,
                                           [&] {
                                             const bool works = ++starts < 3;
                                             if (!works) {
                                               thirdStartFailed.set_value();
                                             }
                                             return works;
                                           },
                                           nullptr});
  std::atomic<int> ended = 0;
  NumberedPairsDetector detector(5, [&](size_t) {
    failure.wait();
    ++ended;
    return Translation();
  });
  RecordingListener listener;
  ITranslationDetector& interface = detector;
  EXPECT_THROW(interface.DetectTranslation(captures, &listener, 0, 100), std::system_error);
  EXPECT_EQ(ended, 2);
  EXPECT_THAT(listener.calls, ElementsAre("progress 25", "progress 50"));
}

TEST(PhaseCorrelationTranslationDetectorWorkers, CanBeStartedInALaterDetectionWhenOneIsRefused) {
  BasicImageProvider captures = NumberedCaptures(5);
  NumberedPairsDetector detector(2, [](size_t) { return Translation(-1, 0); });
  ITranslationDetector& interface = detector;
  for (int working = 0; working < 4; ++working) {
    int starts = 0;
    const ScopedInterposition interposition(
        {nullptr, [&] { return ++starts <= working; }, nullptr});
    EXPECT_THROW(interface.DetectTranslation(captures, nullptr, 0, 100), std::system_error);
  }
  EXPECT_EQ(interface.DetectTranslation(captures, nullptr, 0, 100),
            std::vector<Translation>(4, Translation(-1, 0)));
}

TEST(PhaseCorrelationTranslationDetectorWorkers,
     LeaveACaptureObjectReadyForAnotherStitchWhenOneIsRefused) {
  auto capture = VelScrollingCapture::init();
  const cv::Mat page = TextPage({100, 180});
  for (const int top : {0, 30, 60}) {
    capture->addImageToAdapter(PlatformImage::imageWithCVMat(page.rowRange(top, top + 120)));
  }
  {
    const ScopedInterposition interposition({nullptr, [] { return false; }, nullptr});
    EXPECT_THROW(capture->stitchAndReturnFinalImage(), std::system_error);
  }
  EXPECT_EQ(capture.use_count(), 1) << "The host's reference";
  capture->setupStitcher();
  const std::optional<PlatformImage> image = capture->stitchAndReturnFinalImage();
  ASSERT_TRUE(image.has_value());
  EXPECT_TRUE(SameBits(image->CVMat(), page));
}

/// With a thread count of 0 there is no worker, so nothing can end the wait that is seen here.
TEST(PhaseCorrelationTranslationDetectorWorkersDeathTest,
     AreNeverStartedAndForEverWaitedForWithAThreadCountOfZero) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  constexpr int WaitedWithoutStarting = 7;
  constexpr int Started = 8;
  EXPECT_EXIT(
      {
        Interposition interposition = WhenTheCallerWaits([] { std::_Exit(WaitedWithoutStarting); });
        interposition.threadStarts = []() -> bool { std::_Exit(Started); };
        const ScopedInterposition scoped(interposition);
        BasicImageProvider captures = NumberedCaptures(2);
        PhaseCorrelationTranslationDetector detector(Both, false, 0);
        detector.DetectTranslation(captures, nullptr, 0, 100);
      },
      testing::ExitedWithCode(WaitedWithoutStarting), "");
}

TEST(PhaseCorrelationTranslationDetectorWorkersDeathTest, EndTheProcessWhenOpenCVRejectsACapture) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  EXPECT_DEATH(
      {
        BasicImageProvider captures;
        cv::Mat grey(4, 4, CV_8UC1, cv::Scalar(0));
        captures.Add(grey);
        captures.Add(grey);
        PhaseCorrelationTranslationDetector detector(Both, false, 1);
        detector.DetectTranslation(captures, nullptr, 0, 100);
      },
      "cv::Exception");
}

}  // namespace
}  // namespace ScrollingCapture
