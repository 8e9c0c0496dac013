#include <memory>
#include <optional>
#include <vector>

#include <gtest/gtest.h>
#include <testkit/pages/ScrolledCaptures.h>
#include <tests/frontend/CaptureObject.h>

#include <VelScrollingCapture/frontend/VelScrollingCapture.h>

namespace ScrollingCapture {
namespace {

using Testing::Delegate;
using Testing::SameBits;

class ExactCaptureObject : public Testing::CaptureObject {
 protected:
  ExactCaptureObject() {
    capture->cleanupListener();
    capture = VelScrollingCapture::initWithExactJoins(2);
  }
  CaptureOutcome::State Outcome(const cv::Mat& matrix) {
    return capture->addCapture(PlatformImage::imageWithCVMat(matrix)).state;
  }
  /// What a window of 200 x 160 pixels shows at a row of a page.
  cv::Mat At(int row) const { return page(cv::Rect(0, row, 200, 160)).clone(); }

  const cv::Mat page = Testing::NoiseCapture({200, 900}, 5);
};

TEST_F(ExactCaptureObject, TellsAtOnceWhetherACaptureCouldBePlaced) {
  using State = CaptureOutcome::State;
  EXPECT_EQ(Outcome(At(0)), State::Placed);
  EXPECT_EQ(Outcome(At(60)), State::Placed);
  EXPECT_EQ(Outcome(At(60)), State::Repeated);
  EXPECT_EQ(Outcome(At(400)), State::TooFast);
  EXPECT_EQ(Outcome(At(150)), State::Placed) << "It joins what came before the last one";
  EXPECT_EQ(Outcome(Testing::NoiseCapture({5, 5}, 1)), State::Unusable);
  EXPECT_EQ(Count(), 4U);
}

TEST_F(ExactCaptureObject, RefusesAFirstCaptureWithoutPixels) {
  EXPECT_EQ(capture->addCapture(std::nullopt).state, CaptureOutcome::State::Unusable);
  EXPECT_EQ(Outcome(At(0)), CaptureOutcome::State::Placed);
}

TEST_F(ExactCaptureObject, StitchesEverythingSeenWithProgressAndEndsTheReference) {
  const auto delegate = std::make_shared<Delegate>();
  capture->setProgressDelegate(delegate);
  for (const int row : {0, 60, 300, 200, 130}) {  // too fast, and back
    Add(At(row));
  }
  const auto image = capture->stitchAndReturnFinalImage();
  ASSERT_TRUE(image.has_value());
  EXPECT_TRUE(SameBits(image->CVMat(), page.rowRange(0, 460).clone()));
  EXPECT_EQ(delegate->heard.back(), 100);
  EXPECT_EQ(capture->progressListener(), nullptr);
  EXPECT_EQ(capture.use_count(), 1);
}

TEST_F(ExactCaptureObject, GivesTheLargestPartWhereCapturesAreMissing) {
  for (const int row : {0, 400, 470}) {
    Add(At(row));
  }
  const auto image = capture->stitchAndReturnFinalImage();
  ASSERT_TRUE(image.has_value());
  EXPECT_TRUE(SameBits(image->CVMat(), page.rowRange(400, 630).clone()));
}

TEST_F(ExactCaptureObject, GivesNothingWithoutCapturesOrWhenTheDelegateStopsIt) {
  EXPECT_FALSE(capture->stitchAndReturnFinalImage().has_value());
  const auto other = VelScrollingCapture::initWithExactJoins(0);
  const auto delegate = std::make_shared<Delegate>(1);
  other->setProgressDelegate(delegate);
  for (const int row : {0, 60}) {
    other->addImageToAdapter(PlatformImage::imageWithCVMat(At(row)));
  }
  EXPECT_FALSE(other->stitchAndReturnFinalImage().has_value());
  EXPECT_EQ(other.use_count(), 1);
}

TEST_F(ExactCaptureObject, BeginsAnewWhenItsAdapterIsCleared) {
  Add(At(0));
  Add(At(60));
  capture->stitcherAdapter()->Clear();
  EXPECT_EQ(Outcome(At(500)), CaptureOutcome::State::Placed);
  EXPECT_EQ(Outcome(At(560)), CaptureOutcome::State::Placed);
  const auto image = capture->stitchAndReturnFinalImage();
  ASSERT_TRUE(image.has_value());
  EXPECT_TRUE(SameBits(image->CVMat(), page.rowRange(500, 720).clone()));
}

}  // namespace
}  // namespace ScrollingCapture
