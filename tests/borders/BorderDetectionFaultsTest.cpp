// Memory that runs out, and listeners that throw, while borders are found and laid.

#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <testkit/MatrixTesting.h>
#include <testkit/OpenBorderDetection.h>
#include <testkit/RecordingListener.h>
#include <testkit/StreamCapture.h>
#include <testkit/faults/EveryFailure.h>
#include <testkit/faults/ThrowingListener.h>
#include <testkit/pages/ScrolledWindow.h>

#include <VelScrollingCapture/stitching/StitcherFactory.h>
#include <VelScrollingCapture/storage/BasicImageProvider.h>

namespace ScrollingCapture {
namespace {

using Testing::CaptureCount;
using Testing::CaptureSize;
using Testing::ContentBox;
using Testing::CountFailingAttempts;
using Testing::EndsByListener;
using Testing::FailingAllocator;
using Testing::ForEachFailingAllocation;
using testing::HasSubstr;
using Testing::ListenerFailure;
using Testing::MemoryFault;
using Testing::NoiseCapture;
using Testing::OpenBorderDetection;
using Testing::RecordingListener;
using Testing::SameBits;
using Testing::ScrolledWindow;
using Testing::StreamCapture;
using Testing::ThrowingListener;

constexpr unsigned int DifferenceThreshold = 10;
constexpr unsigned int NeighborThreshold = 2;

/// Copies of the window's captures.
BasicImageProvider CapturesOf(const ScrolledWindow& window) {
  BasicImageProvider captures;
  for (const cv::Mat& shown : window.captures) {
    cv::Mat capture = shown.clone();
    captures.Add(capture);
  }
  return captures;
}

std::shared_ptr<IStitcher> MakeStitcher() {
  return StitcherFactory::CreateStitcherWithBasicBorderDetection(
      Vertical, false, 2, DifferenceThreshold, NeighborThreshold);
}

/// Every capture is either whole or what is inside its borders.
void ExpectWholeOrCropped(BasicImageProvider& captures, const ScrolledWindow& window) {
  ASSERT_EQ(captures.Count(), window.captures.size());
  for (size_t i = 0; i < captures.Count(); ++i) {
    const cv::Mat capture = *captures.GetImageAt(i);
    EXPECT_TRUE(SameBits(capture, window.captures[i]) ||
                SameBits(capture, window.captures[i](ContentBox)))
        << i;
  }
}

class BorderDetectionAllocations : public testing::TestWithParam<FailingAllocator::Failures> {
 protected:
  /// Stitches copies of the window's captures.
  void Stitch() {
    const StreamCapture output(std::cout);
    const StreamCapture errors(std::cerr);
    succeeded = stitcher->Stitch(captures, result, &listener, 0, 100, true);
    messages = errors.Text();
  }

  void StartAnew() {
    captures = CapturesOf(window);
    result = before.clone();
    listener = {};
    succeeded = false;
  }

  void ExpectTheOldResult() const { EXPECT_TRUE(SameBits(result, before)); }

  /// Memory ran out while borders and contents were copied.
  void ExpectWhatAnExceptionLeaves() {
    ExpectTheOldResult();
    ExpectWholeOrCropped(captures, window);
  }

  /// Memory ran out while captures were compared, which then count as without borders.
  void ExpectAStitchWithoutBorders() const {
    EXPECT_THAT(messages, HasSubstr("content boundary for image with index"));
  }

  /// Memory ran out for the frame, or else for the result.
  void ExpectAFailedStitch() const {
    ASSERT_GE(listener.calls.size(), 2U);
    const std::string& error = listener.calls.end()[-2];
    if (error == "error 5 true") {
      EXPECT_EQ(messages,
                "Error: Insufficient memory to apply borders.\n"
                "Error: Found borders, but failed to apply them to result image.\n");
      EXPECT_TRUE(SameBits(result, window.page));
    } else {
      EXPECT_EQ(error, "error 3 false");
      EXPECT_THAT(messages, HasSubstr("Error: Failed to size the resulting image.\n"));
      ExpectTheOldResult();
    }
  }

  const ScrolledWindow window{ContentBox, {0, 40}};
  const cv::Mat whole = window.BorderedPage();
  const cv::Mat before = NoiseCapture({3, 3}, 1);
  std::shared_ptr<IStitcher> stitcher;
  BasicImageProvider captures;
  RecordingListener listener;
  cv::Mat result;
  std::string messages;
  bool succeeded = false;
};

TEST_P(BorderDetectionAllocations, GiveTheBorderedPageOrTellWhatFailed) {
  ForEachFailingAllocation(GetParam(), [&](MemoryFault& fault) {
    stitcher = MakeStitcher();
    StartAnew();
    const bool failed = fault.HitsDuring([&] { Stitch(); });
    EXPECT_TRUE(failed || succeeded);
    if (fault.HasThrown()) {
      ExpectWhatAnExceptionLeaves();
    } else if (!succeeded) {
      ExpectAFailedStitch();
    } else if (failed) {
      ExpectAStitchWithoutBorders();
    } else {
      EXPECT_TRUE(SameBits(result, whole));
    }
    StartAnew();
    Stitch();
    EXPECT_TRUE(SameBits(result, whole));
  });
}

INSTANTIATE_TEST_SUITE_P(Failures, BorderDetectionAllocations,
                         testing::ValuesIn(Testing::AllFailures), Testing::NameOfFailures);

TEST(BorderDetectionOutOfMemory, KeepsTheCapturesUntilTheirBordersAreStored) {
  const ScrolledWindow window(ContentBox, {0, 40});
  BasicImageProvider captures = CapturesOf(window);
  OpenBorderDetection detection(DifferenceThreshold, NeighborThreshold);
  {
    const FailingAllocator memory;
    EXPECT_THROW(detection.ExtractBorders(captures), cv::Exception);
  }
  for (size_t i = 0; i < CaptureCount; ++i) {
    EXPECT_TRUE(SameBits(*captures.GetImageAt(i), window.captures[i])) << i;
  }
  EXPECT_TRUE(detection.ExtractBorders(captures));
  EXPECT_TRUE(SameBits(*detection.topBorder, window.frame.rowRange(0, ContentBox.y)));
}

TEST(BorderDetectionOutOfMemory, KeepsTheImageThatWasToGetBorders) {
  OpenBorderDetection detection(DifferenceThreshold, NeighborThreshold);
  const cv::Mat content = NoiseCapture({30, 40}, 5);
  detection.topBorder = std::make_shared<cv::Mat>(NoiseCapture({30, 10}, 6));
  cv::Mat image = content.clone();
  {
    const StreamCapture errors(std::cerr);
    const FailingAllocator memory;
    EXPECT_FALSE(detection.ApplyBorders(image));
    EXPECT_EQ(errors.Text(), "Error: Insufficient memory to apply borders.\n");
  }
  EXPECT_TRUE(SameBits(image, content));
  EXPECT_TRUE(detection.ApplyBorders(image));
  EXPECT_TRUE(SameBits(image.rowRange(10, 50), content));
}

/// Finds borders and cannot lay them.
class FailingApplication : public BorderDetection {
 public:
  using BorderDetection::BorderDetection;

 protected:
  bool ExtractBorders(IImageProvider& /*images*/) override { return true; }
  bool ApplyBorders(cv::Mat& /*image*/) override { return false; }
};

TEST(BorderDetectionListener, EndsTheStitchByThrowingAndLosesNothing) {
  const ScrolledWindow window(ContentBox, {0, 40});
  const auto stitch = [&](size_t passing) {
    BasicImageProvider captures = CapturesOf(window);
    cv::Mat result;
    const auto stitcher = MakeStitcher();
    ThrowingListener listener(passing);
    const bool threw = EndsByListener(
        [&] { EXPECT_TRUE(stitcher->Stitch(captures, result, &listener, 0, 100, true)); });
    EXPECT_EQ(threw, listener.HasThrown());
    EXPECT_TRUE(result.empty() || SameBits(result, window.BorderedPage()));
    BasicImageProvider again = CapturesOf(window);
    EXPECT_TRUE(stitcher->Stitch(again, result, nullptr, 0, 100, true));
    EXPECT_TRUE(SameBits(result, window.BorderedPage()));
    return threw;
  };
  // The end of the detection, each pair that is composed and the end, and the completion.
  EXPECT_EQ(CountFailingAttempts(stitch), 1 + CaptureCount + 1);
}

TEST(BorderDetectionListener, LeavesTheContentByThrowingWhenBordersCannotBeLaid) {
  class ThrowingAtErrors : public RecordingListener {
   public:
    bool StitchingError(StitcherErrorCodes /*code*/, bool /*fatal*/) override {
      throw ListenerFailure();
    }
  };
  const ScrolledWindow window(cv::Rect({}, CaptureSize), {0, 40});
  BasicImageProvider captures = CapturesOf(window);
  cv::Mat result;
  FailingApplication stitcher(StitcherFactory::CreateBasicStitcher(Vertical, false, 1));
  ThrowingAtErrors listener;
  const StreamCapture errors(std::cerr);
  EXPECT_THROW(stitcher.Stitch(captures, result, &listener, 0, 100, true), ListenerFailure);
  EXPECT_TRUE(SameBits(result, window.page));
  EXPECT_EQ(listener.calls.back(), "complete false");
}

}  // namespace
}  // namespace ScrollingCapture
