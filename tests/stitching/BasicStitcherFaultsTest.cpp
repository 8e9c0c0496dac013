// Memory that runs out, and listeners that throw, while a stitcher composes its captures.

#include <iostream>
#include <memory>
#include <stdexcept>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <testkit/MatrixTesting.h>
#include <testkit/RecordingListener.h>
#include <testkit/ScriptedDetector.h>
#include <testkit/StreamCapture.h>
#include <testkit/faults/EveryFailure.h>
#include <testkit/faults/ThrowingListener.h>

#include <VelScrollingCapture/stitching/BasicStitcher.h>
#include <VelScrollingCapture/stitching/StitcherFactory.h>
#include <VelScrollingCapture/storage/BasicImageProvider.h>

namespace ScrollingCapture {
namespace {

using Testing::CountFailingAttempts;
using testing::ElementsAre;
using Testing::EndsByListener;
using Testing::FailingAllocator;
using Testing::ForEachFailingAllocation;
using Testing::ListenerFailure;
using Testing::MemoryFault;
using Testing::NoiseCapture;
using Testing::RecordingListener;
using Testing::SameBits;
using Testing::ScriptedDetector;
using Testing::StreamCapture;
using Testing::ThrowingListener;

constexpr int Step = 40;
constexpr int CaptureCount = 3;
const cv::Size CaptureSize(60, 96);

cv::Mat Page() {
  return NoiseCapture({CaptureSize.width, CaptureSize.height + (CaptureCount - 1) * Step}, 42);
}

/// What a window shows that scrolls down over a page, with pixels of their own.
BasicImageProvider CapturesOf(const cv::Mat& page) {
  BasicImageProvider captures;
  for (int i = 0; i < CaptureCount; ++i) {
    cv::Mat capture = page.rowRange(i * Step, i * Step + CaptureSize.height).clone();
    captures.Add(capture);
  }
  return captures;
}

BasicImageProvider Captures() { return CapturesOf(Page()); }

void ExpectUntouched(BasicImageProvider& captures) {
  BasicImageProvider originals = Captures();
  ASSERT_EQ(captures.Count(), originals.Count());
  for (size_t i = 0; i < captures.Count(); ++i) {
    EXPECT_TRUE(SameBits(*captures.GetImageAt(i), *originals.GetImageAt(i))) << i;
  }
}

std::shared_ptr<ScriptedDetector> DetectorOfThePage() {
  return std::make_shared<ScriptedDetector>(
      std::vector<Translation>(CaptureCount - 1, Translation(-Step, 0)));
}

TEST(BasicStitcherOutOfMemory, LeavesCapturesAndResultAsTheyWereAndCanBeUsedAgain) {
  BasicImageProvider captures = Captures();
  cv::Mat result = NoiseCapture({3, 3}, 1);
  const cv::Mat before = result.clone();
  BasicStitcher stitcher(DetectorOfThePage());
  RecordingListener listener;
  {
    const StreamCapture errors(std::cerr);
    const FailingAllocator memory;
    EXPECT_FALSE(stitcher.Stitch(captures, result, &listener, 0, 100, true));
    EXPECT_EQ(errors.Text(),
              "Error: Failed to size the resulting image.\n"
              "Error: Failed to build the Result image.\n");
  }
  EXPECT_THAT(listener.calls, ElementsAre("error 3 false", "complete false"));
  EXPECT_TRUE(SameBits(result, before));
  ExpectUntouched(captures);
  EXPECT_TRUE(stitcher.Stitch(captures, result, &listener, 0, 100, true));
  EXPECT_TRUE(SameBits(result, Page()));
}

class BasicStitcherAllocations : public testing::TestWithParam<FailingAllocator::Failures> {};

TEST_P(BasicStitcherAllocations, GiveTheWholeResultOrAnErrorAndTheOldOne) {
  const cv::Mat page = Page();
  // Pixels of five channels are laid through a mask, which has to be allocated.
  for (const cv::Mat& captured : {page, page.colRange(0, 40).clone().reshape(5)}) {
    BasicImageProvider cleanCaptures = CapturesOf(captured);
    cv::Mat whole;
    ASSERT_TRUE(
        BasicStitcher(DetectorOfThePage()).Stitch(cleanCaptures, whole, nullptr, 0, 100, true));
    ForEachFailingAllocation(GetParam(), [&](MemoryFault& fault) {
      BasicImageProvider captures = CapturesOf(captured);
      cv::Mat result;
      BasicStitcher stitcher(DetectorOfThePage());
      bool succeeded = false;
      const bool failed = fault.HitsDuring([&] {
        const StreamCapture errors(std::cerr);
        succeeded = stitcher.Stitch(captures, result, nullptr, 0, 100, true);
      });
      EXPECT_EQ(succeeded, !failed);
      EXPECT_EQ(result.empty(), failed);
      EXPECT_TRUE(stitcher.Stitch(captures, result, nullptr, 0, 100, true));
      EXPECT_TRUE(SameBits(result, whole));
    });
  }
}

INSTANTIATE_TEST_SUITE_P(Failures, BasicStitcherAllocations,
                         testing::ValuesIn(Testing::AllFailures), Testing::NameOfFailures);

/// Every call that a listener gets on the calling thread: the end of the detection, the composing,
/// and the completion.
TEST(BasicStitcherListener, EndsTheStitchByThrowingAndLosesNothing) {
  constexpr size_t EndOfDetection = 1;
  constexpr size_t Composing = CaptureCount;
  constexpr size_t Completion = 1;
  const auto stitch = [](size_t passing) {
    BasicImageProvider captures = Captures();
    cv::Mat result = NoiseCapture({3, 3}, 1);
    const cv::Mat before = result.clone();
    const auto stitcher =
        StitcherFactory::CreateBasicStitcher(ScrollOrientation::Vertical, false, 2);
    ThrowingListener listener(passing);
    const bool threw = EndsByListener(
        [&] { EXPECT_TRUE(stitcher->Stitch(captures, result, &listener, 0, 100, true)); });
    EXPECT_EQ(threw, listener.HasThrown());
    const bool threwAtCompletion = passing == EndOfDetection + Composing;
    EXPECT_EQ(listener.completed, !threwAtCompletion);
    EXPECT_TRUE(SameBits(result, threw && !threwAtCompletion ? before : Page()));
    EXPECT_TRUE(stitcher->Stitch(captures, result, nullptr, 0, 100, true));
    EXPECT_TRUE(SameBits(result, Page()));
    return threw;
  };
  EXPECT_EQ(CountFailingAttempts(stitch), EndOfDetection + Composing + Completion);
}

TEST(BasicStitcherListener, KeepsTheOldResultByThrowingBeforeTheCompletionNotice) {
  BasicImageProvider captures = Captures();
  cv::Mat result = NoiseCapture({3, 3}, 1);
  const cv::Mat before = result.clone();
  BasicStitcher stitcher(DetectorOfThePage());
  ThrowingListener lastProgress(CaptureCount - 1);
  EXPECT_THROW(stitcher.Stitch(captures, result, &lastProgress, 0, 100, true), ListenerFailure);
  EXPECT_TRUE(SameBits(result, before));
  ThrowingListener completion(CaptureCount);
  EXPECT_THROW(stitcher.Stitch(captures, result, &completion, 0, 100, true), ListenerFailure);
  EXPECT_TRUE(SameBits(result, Page()));
}

TEST(BasicStitcherListener, KeepsTheOldResultByThrowingForASingleCapture) {
  BasicImageProvider captures;
  cv::Mat capture = Page();
  captures.Add(capture);
  cv::Mat result;
  BasicStitcher stitcher(DetectorOfThePage());
  ThrowingListener listener(0);
  EXPECT_THROW(stitcher.Stitch(captures, result, &listener, 0, 100, true), ListenerFailure);
  EXPECT_TRUE(result.empty());
  EXPECT_TRUE(stitcher.Stitch(captures, result, nullptr, 0, 100, true));
  EXPECT_EQ(result.data, capture.data);
}

TEST(BasicStitcherListener, MayThrowWhenItIsToldOfAnError) {
  BasicImageProvider captures;
  cv::Mat result;
  BasicStitcher stitcher(DetectorOfThePage());
  const StreamCapture errors(std::cerr);
  ThrowingListener listener(0);
  EXPECT_THROW(stitcher.Stitch(captures, result, &listener, 0, 100, true), ListenerFailure);
  captures = Captures();
  EXPECT_TRUE(stitcher.Stitch(captures, result, nullptr, 0, 100, true));
  EXPECT_TRUE(SameBits(result, Page()));
}

TEST(BasicStitcherListener, DoesNotReplaceTheExceptionByThrowingWhenItHearsOfTheFailure) {
  class ThrowingEverywhere : public RecordingListener {
   public:
    bool ProgressCallback(int /*progress*/) override { throw ListenerFailure(); }
    void StitchingComplete(bool success) override {
      RecordingListener::StitchingComplete(success);
      throw std::logic_error("The listener failed again.");
    }
  };
  BasicImageProvider captures = Captures();
  cv::Mat result;
  ThrowingEverywhere listener;
  EXPECT_THROW(BasicStitcher(DetectorOfThePage()).Stitch(captures, result, &listener, 0, 100, true),
               ListenerFailure);
  EXPECT_THAT(listener.calls, ElementsAre("complete false"));
}

TEST(BasicStitcherListenerDeathTest, EndsTheProcessByThrowingOnAWorkerThread) {
  class ThrowingOnWorkers : public RecordingListener {
   public:
    bool ProgressCallback(int /*progress*/) override { throw ListenerFailure(); }
  };
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  EXPECT_DEATH(
      {
        BasicImageProvider captures = Captures();
        cv::Mat result;
        ThrowingOnWorkers listener;
        StitcherFactory::CreateBasicStitcher(ScrollOrientation::Vertical, false, 1)
            ->Stitch(captures, result, &listener, 0, 100, true);
      },
      "The listener failed.");
}

}  // namespace
}  // namespace ScrollingCapture
