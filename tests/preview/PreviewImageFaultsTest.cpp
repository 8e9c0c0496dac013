// Memory that runs out while a preview grows.

#include <vector>

#include <gtest/gtest.h>
#include <opencv2/imgproc.hpp>
#include <testkit/MatrixTesting.h>
#include <testkit/faults/EveryFailure.h>

#include <VelScrollingCapture/preview/PreviewImage.h>

namespace ScrollingCapture {
namespace {

using Testing::FailingAllocator;
using Testing::ForEachFailingAllocation;
using Testing::MemoryFault;
using Testing::NoiseCapture;
using Testing::SameBits;

constexpr int Laid = 0;
constexpr int Failed = 3;

const cv::Size CanvasSize(300, 80);

/// What a window shows that scrolls over a large, blocky picture: down, up beyond the start, to the
/// left and aslant, so that the preview has to grow on every side.
std::vector<cv::Mat> Captures() {
  cv::Mat picture;
  cv::resize(NoiseCapture({150, 60}, 7), picture, {750, 300}, 0, 0, cv::INTER_NEAREST);
  std::vector<cv::Mat> captures;
  for (const cv::Point& corner : {cv::Point(250, 100), cv::Point(250, 125), cv::Point(250, 100),
                                  cv::Point(250, 70), cv::Point(190, 70), cv::Point(255, 90)}) {
    captures.push_back(picture(cv::Rect(corner, cv::Size(250, 50))).clone());
  }
  return captures;
}

cv::Mat WholePreview() {
  PreviewImage preview(CanvasSize, 10, 10);
  for (const cv::Mat& capture : Captures()) {
    EXPECT_EQ(preview.AddCapture(capture), Laid);
  }
  return preview.GetPreview();
}

class PreviewAllocations : public testing::TestWithParam<FailingAllocator::Failures> {};

TEST_P(PreviewAllocations, LeaveThePreviewReadyForTheSameCaptureAgainWhenTheyFail) {
  const cv::Mat whole = WholePreview();
  EXPECT_GT(whole.rows, CanvasSize.height);
  EXPECT_GT(whole.cols, CanvasSize.width);
  const std::vector<cv::Mat> captures = Captures();
  for (size_t failing = 0; failing < captures.size(); ++failing) {
    ForEachFailingAllocation(GetParam(), [&](MemoryFault& fault) {
      PreviewImage preview(CanvasSize, 10, 10);
      for (size_t i = 0; i < failing; ++i) {
        EXPECT_EQ(preview.AddCapture(captures[i]), Laid);
      }
      const cv::Mat before = preview.GetPreview();
      int result = Laid;
      const bool failed = fault.HitsDuring([&] { result = preview.AddCapture(captures[failing]); });
      EXPECT_EQ(result, failed ? Failed : Laid);
      if (failed) {
        EXPECT_TRUE(SameBits(preview.GetPreview(), before));
        EXPECT_EQ(preview.AddCapture(captures[failing]), Laid);
      }
      for (size_t i = failing + 1; i < captures.size(); ++i) {
        EXPECT_EQ(preview.AddCapture(captures[i]), Laid);
      }
      EXPECT_TRUE(SameBits(preview.GetPreview(), whole)) << failing;
    });
  }
}

INSTANTIATE_TEST_SUITE_P(Failures, PreviewAllocations, testing::ValuesIn(Testing::AllFailures),
                         Testing::NameOfFailures);

TEST(PreviewImageOutOfMemory, ThrowsWhenThereIsNoMemoryForTheFirstCanvas) {
  const FailingAllocator memory;
  EXPECT_THROW(PreviewImage(), cv::Exception);
}

TEST(PreviewImageOutOfMemory, ThrowsInsteadOfACopyAndKeepsTheCanvas) {
  PreviewImage preview(CanvasSize, 0, 0);
  ASSERT_EQ(preview.AddCapture(Captures()[0]), Laid);
  const cv::Mat before = preview.GetPreview();
  {
    const FailingAllocator memory;
    EXPECT_THROW(preview.GetPreview(), cv::Exception);
    EXPECT_THROW(preview.GetPreview(20, 20), cv::Exception);
  }
  EXPECT_TRUE(SameBits(preview.GetPreview(), before));
}

TEST(PreviewImage, IsAsItWasAfterACaptureThatDoesNotFitTheOthers) {
  const std::vector<cv::Mat> captures = Captures();
  PreviewImage preview(CanvasSize, 10, 10);
  for (const cv::Mat& capture : captures) {
    cv::Mat withoutAlpha;
    cv::cvtColor(capture, withoutAlpha, cv::COLOR_RGBA2RGB);
    EXPECT_EQ(preview.AddCapture(withoutAlpha), Failed);
    EXPECT_EQ(preview.AddCapture(capture), Laid);
  }
  EXPECT_TRUE(SameBits(preview.GetPreview(), WholePreview()));
}

}  // namespace
}  // namespace ScrollingCapture
