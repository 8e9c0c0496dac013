#include <atomic>
#include <future>
#include <iostream>
#include <limits>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <testkit/RecordingListener.h>
#include <testkit/StreamCapture.h>
#include <testkit/pages/NumberedCaptures.h>
#include <testkit/pages/Page.h>
#include <testkit/pages/ScrolledPage.h>
#include <testkit/references/ReferenceDetector.h>

namespace ScrollingCapture {
namespace {

using testing::ElementsAre;
using Testing::FiveCaptures;
using testing::IsEmpty;
using Testing::NumberedCaptures;
using Testing::RecordingListener;
using Testing::ReferenceDetector;
using Testing::ScrolledPage;
using testing::TestWithParam;

using Translations = std::vector<Translation>;

class PhaseCorrelationTranslationDetectorThreadCounts : public TestWithParam<unsigned int> {};

TEST_P(PhaseCorrelationTranslationDetectorThreadCounts, GiveTheMotionsInCaptureOrder) {
  BasicImageProvider captures = FiveCaptures().Captures();
  PhaseCorrelationTranslationDetector detector(Both, false, GetParam());
  EXPECT_EQ(detector.DetectTranslation(captures, nullptr, 0, 90), FiveCaptures().translations);
}

TEST_P(PhaseCorrelationTranslationDetectorThreadCounts, GiveTheSameWithConsistencyExpected) {
  BasicImageProvider captures = FiveCaptures().Captures();
  PhaseCorrelationTranslationDetector detector(Both, true, GetParam());
  EXPECT_EQ(detector.DetectTranslation(captures, nullptr, 0, 90), FiveCaptures().translations);
}

TEST_P(PhaseCorrelationTranslationDetectorThreadCounts,
       ReportProgressFromTheWorkersAndTheEndFromTheCaller) {
  BasicImageProvider captures = FiveCaptures().Captures();
  PhaseCorrelationTranslationDetector detector(Both, false, GetParam());
  RecordingListener listener;
  detector.DetectTranslation(captures, &listener, 0, 90);
  EXPECT_THAT(listener.calls, ElementsAre("progress 22", "progress 45", "progress 67",
                                          "progress 90", "progress 90"));
}

TEST_P(PhaseCorrelationTranslationDetectorThreadCounts, StopWhenTheFirstProgressCallIsRefused) {
  BasicImageProvider captures = FiveCaptures().Captures();
  PhaseCorrelationTranslationDetector detector(Both, false, GetParam());
  RecordingListener listener(0);
  EXPECT_THAT(detector.DetectTranslation(captures, &listener, 0, 90), IsEmpty());
  EXPECT_THAT(listener.calls, ElementsAre("progress 22", "error 4 false"));
}

TEST_P(PhaseCorrelationTranslationDetectorThreadCounts, StopWhenAMiddleProgressCallIsRefused) {
  BasicImageProvider captures = FiveCaptures().Captures();
  PhaseCorrelationTranslationDetector detector(Both, true, GetParam());
  RecordingListener listener(2);
  EXPECT_THAT(detector.DetectTranslation(captures, &listener, 0, 90), IsEmpty());
  EXPECT_THAT(listener.calls,
              ElementsAre("progress 22", "progress 45", "progress 67", "error 4 false"));
}

INSTANTIATE_TEST_SUITE_P(Cases, PhaseCorrelationTranslationDetectorThreadCounts,
                         testing::Values(1, 2, 3, 8));

TEST(PhaseCorrelationTranslationDetectorSequence, FailsWhenTheCallersLastProgressCallIsRefused) {
  BasicImageProvider captures = FiveCaptures().Captures();
  PhaseCorrelationTranslationDetector detector(Both, false, 2);
  RecordingListener listener(4);
  EXPECT_THAT(detector.DetectTranslation(captures, &listener, 0, 90), IsEmpty());
  EXPECT_THAT(listener.calls, ElementsAre("progress 22", "progress 45", "progress 67",
                                          "progress 90", "progress 90", "error 4 false"));
}

TEST(PhaseCorrelationTranslationDetectorSequence, GivesWhatTheReferenceGivesForEachPair) {
  BasicImageProvider captures;
  for (unsigned int seed = 0; seed < 6; ++seed) {
    cv::Mat capture = Testing::TextPage({120, 75}, seed);
    captures.Add(capture);
  }
  for (const ScrollOrientation orientation :
       {Vertical, Horizontal, Both, static_cast<ScrollOrientation>(3)}) {
    const ReferenceDetector reference(orientation);
    Translations expected;
    for (size_t pair = 0; pair + 1 < captures.Count(); ++pair) {
      expected.push_back(
          reference.DetectTranslation(*captures.GetImageAt(pair), *captures.GetImageAt(pair + 1)));
    }
    PhaseCorrelationTranslationDetector detector(orientation, false, 2);
    EXPECT_EQ(detector.DetectTranslation(captures, nullptr, 0, 90), expected);
  }
}

TEST(PhaseCorrelationTranslationDetectorSequence,
     GivesOneTranslationForTwoCapturesAndReportsTheEndTwice) {
  BasicImageProvider captures = ScrolledPage({{3, 30}}).Captures();
  PhaseCorrelationTranslationDetector detector(Both, true, 1);
  RecordingListener listener;
  EXPECT_THAT(detector.DetectTranslation(captures, &listener, 10, 55),
              ElementsAre(Translation(-30, -3)));
  EXPECT_THAT(listener.calls, ElementsAre("progress 55", "progress 55"));
}

TEST(PhaseCorrelationTranslationDetectorSequence, ReportsProgressOfRangesWiderThan32Bits) {
  BasicImageProvider captures = NumberedCaptures(2);
  PhaseCorrelationTranslationDetector detector(Both, false, 1);
  RecordingListener listener;
  detector.DetectTranslation(captures, &listener, std::numeric_limits<int>::min(),
                             std::numeric_limits<int>::max());
  EXPECT_THAT(listener.calls, ElementsAre("progress 2147483647", "progress 2147483647"));
}

class PhaseCorrelationTranslationDetectorTooFewCaptures : public TestWithParam<size_t> {};

TEST_P(PhaseCorrelationTranslationDetectorTooFewCaptures,
       AreRefusedWithAMessageWithoutTellingTheListener) {
  BasicImageProvider captures = NumberedCaptures(GetParam());
  PhaseCorrelationTranslationDetector detector(Both, true, 1);
  RecordingListener listener;
  const Testing::StreamCapture errors(std::cerr);
  EXPECT_THAT(detector.DetectTranslation(captures, &listener, 0, 90), IsEmpty());
  EXPECT_EQ(errors.Text(), "Error: Not enough images in the IImageProvider.\n");
  EXPECT_THAT(listener.calls, IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Cases, PhaseCorrelationTranslationDetectorTooFewCaptures,
                         testing::Values(0, 1));

struct ProgressRange {
  std::string name;
  size_t captures;
  int start;
  int end;
  std::vector<int> values;
};

void PrintTo(const ProgressRange& range, std::ostream* stream) { *stream << range.name; }

class PhaseCorrelationTranslationDetectorProgress : public TestWithParam<ProgressRange> {};

TEST_P(PhaseCorrelationTranslationDetectorProgress, AddsSinglePrecisionStepsAndCutsThemOff) {
  BasicImageProvider captures = NumberedCaptures(GetParam().captures);
  Testing::NumberedPairsDetector detector(1, [](size_t) { return Translation(); });
  RecordingListener listener;
  static_cast<ITranslationDetector&>(detector).DetectTranslation(captures, &listener,
                                                                 GetParam().start, GetParam().end);
  std::vector<std::string> expected;
  for (const int value : GetParam().values) {
    expected.push_back("progress " + std::to_string(value));
  }
  EXPECT_EQ(listener.calls, expected);
}

INSTANTIATE_TEST_SUITE_P(
    Ranges, PhaseCorrelationTranslationDetectorProgress,
    testing::Values(ProgressRange{"FivePairs", 6, 0, 100, {20, 40, 60, 80, 100, 100}},
                    ProgressRange{"LastWorkerFallsShort", 4, 10, 30, {16, 23, 29, 30}},
                    // In single precision ten steps of 0.1 make a little more than 1.
                    ProgressRange{"LessThanOneAPair", 11, 0, 1, {0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 1}},
                    ProgressRange{"EmptyRange", 3, 5, 5, {5, 5, 5}},
                    ProgressRange{"TowardsZeroBelowZero", 3, -3, 0, {-1, 0, 0}},
                    ProgressRange{"Backwards", 3, 90, 0, {45, 0, 0}}),
    [](const auto& instance) { return instance.param.name; });

/// Remembers the threads of the calls, and whether one came while another was going on.
class ThreadListener : public RecordingListener {
 public:
  bool ProgressCallback(int progress) override {
    overlapped = overlapped || inCall.exchange(true);
    threads.push_back(std::this_thread::get_id());
    std::this_thread::yield();
    inCall = false;
    return RecordingListener::ProgressCallback(progress);
  }

  bool StitchingError(StitcherErrorCodes code, bool fatal) override {
    threads.push_back(std::this_thread::get_id());
    return RecordingListener::StitchingError(code, fatal);
  }

  std::vector<std::thread::id> threads;
  bool overlapped = false;

 private:
  std::atomic<bool> inCall = false;
};

TEST(PhaseCorrelationTranslationDetectorSequence,
     CallsTheListenerFromOneWorkerAtATimeAndFromTheCallerAtTheEnd) {
  BasicImageProvider captures = NumberedCaptures(41);
  Testing::NumberedPairsDetector detector(8, [](size_t) { return Translation(); });
  ThreadListener listener;
  static_cast<ITranslationDetector&>(detector).DetectTranslation(captures, &listener, 0, 100);
  ASSERT_EQ(listener.threads.size(), 41);
  EXPECT_FALSE(listener.overlapped);
  EXPECT_EQ(listener.threads.back(), std::this_thread::get_id());
  listener.threads.pop_back();
  EXPECT_THAT(listener.threads, testing::Not(testing::Contains(std::this_thread::get_id())));
}

TEST(PhaseCorrelationTranslationDetectorSequence, TellsOfCancellationFromTheCaller) {
  BasicImageProvider captures = NumberedCaptures(5);
  Testing::NumberedPairsDetector detector(2, [](size_t) { return Translation(); });
  class RefusingListener : public ThreadListener {
   public:
    bool ProgressCallback(int progress) override {
      ThreadListener::ProgressCallback(progress);
      return false;
    }
  } listener;
  static_cast<ITranslationDetector&>(detector).DetectTranslation(captures, &listener, 0, 100);
  EXPECT_THAT(listener.calls, ElementsAre("progress 25", "error 4 false"));
  EXPECT_EQ(listener.threads.back(), std::this_thread::get_id());
}

TEST(PhaseCorrelationTranslationDetectorSequence, ReportsInTheOrderInWhichPairsFinish) {
  BasicImageProvider captures = NumberedCaptures(3);
  std::promise<void> secondPairDone;
  // The first pair ends only after the second one has reported.
  Testing::NumberedPairsDetector detector(2, [&](size_t pair) {
    if (pair == 0) {
      secondPairDone.get_future().wait();
    }
    return Translation(static_cast<int>(pair), 0);
  });
  class ReleasingListener : public RecordingListener {
   public:
    explicit ReleasingListener(std::promise<void>& reported) : reported(reported) {}
    bool ProgressCallback(int progress) override {
      if (calls.empty()) {
        reported.set_value();
      }
      return RecordingListener::ProgressCallback(progress);
    }

   private:
    std::promise<void>& reported;
  } listener(secondPairDone);
  EXPECT_THAT(
      static_cast<ITranslationDetector&>(detector).DetectTranslation(captures, &listener, 0, 100),
      ElementsAre(Translation(0, 0), Translation(1, 0)));
  EXPECT_THAT(listener.calls, ElementsAre("progress 50", "progress 100", "progress 100"));
}

TEST(PhaseCorrelationTranslationDetectorSequence,
     RunsPairsInOrderOnFreshThreadsWithAThreadCountOfOne) {
  BasicImageProvider captures = NumberedCaptures(9);
  std::mutex mutex;
  std::vector<size_t> order;
  thread_local bool usedBefore = false;
  bool reused = false;
  Testing::NumberedPairsDetector detector(1, [&](size_t pair) {
    const std::lock_guard<std::mutex> lock(mutex);
    order.push_back(pair);
    reused = reused || usedBefore;
    usedBefore = true;
    return Translation();
  });
  static_cast<ITranslationDetector&>(detector).DetectTranslation(captures, nullptr, 0, 100);
  EXPECT_THAT(order, ElementsAre(0, 1, 2, 3, 4, 5, 6, 7));
  EXPECT_FALSE(reused);
}

}  // namespace
}  // namespace ScrollingCapture
