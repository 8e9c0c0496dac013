#include <memory>
#include <ostream>
#include <vector>

#include <gtest/gtest.h>
#include <testkit/pages/ScrolledCaptures.h>
#include <tests/frontend/CaptureObject.h>

#include <VelScrollingCapture/frontend/ProgressListener.h>

namespace ScrollingCapture {
namespace {

using Testing::Delegate;
using Testing::ScrolledCaptures;

TEST(ProgressListener, RelaysToItsCaptureObject) {
  const auto capture = VelScrollingCapture::init();
  const auto delegate = std::make_shared<Delegate>(2);
  capture->setProgressDelegate(delegate);
  ProgressListener* const listener = capture->progressListener();
  EXPECT_TRUE(listener->ProgressCallback(3));
  EXPECT_FALSE(listener->ProgressCallback(4));
  EXPECT_EQ(delegate->heard, (std::vector<int>{3, 4}));
  EXPECT_FALSE(listener->StitchingError(IStitcherListener::BorderApplicationFailed, true));
  EXPECT_FALSE(capture->errorDuringStitching());
  listener->StitchingComplete(true);
  EXPECT_EQ(capture->progressListener(), nullptr);
}

TEST(ProgressListener, MayDropTheLastReferenceInItsCompletionNotice) {
  auto capture = VelScrollingCapture::init();
  const std::weak_ptr<VelScrollingCapture> watch = capture;
  ProgressListener* const listener = capture->progressListener();
  capture.reset();
  ASSERT_FALSE(watch.expired());
  listener->StitchingComplete(false);
  EXPECT_TRUE(watch.expired());
}

struct Ending {
  const char* name;
  int captures;
  size_t reports;
};
void PrintTo(const Ending& ending, std::ostream* stream) { *stream << ending.name; }

class Ownership : public testing::TestWithParam<Ending> {};

TEST_P(Ownership, EndsWithTheStitch) {
  auto capture = VelScrollingCapture::initWithExpectConsistentTranslations(true, 2);
  const auto delegate = std::make_shared<Delegate>(GetParam().reports);
  capture->setProgressDelegate(delegate);
  for (const cv::Mat& matrix : ScrolledCaptures(GetParam().captures)) {
    capture->addImageToAdapter(PlatformImage::imageWithCVMat(matrix));
  }
  EXPECT_EQ(capture.use_count(), 2) << "The host's reference and the listener's";
  capture->stitchAndReturnFinalImage();
  EXPECT_EQ(capture.use_count(), 1);
  const std::weak_ptr<VelScrollingCapture> watch = capture;
  capture.reset();
  EXPECT_TRUE(watch.expired());
}

TEST_P(Ownership, AllowsTheHostToLetGoDuringTheStitch) {
  auto capture = VelScrollingCapture::init();
  const std::weak_ptr<VelScrollingCapture> watch = capture;
  const auto delegate = std::make_shared<Delegate>(GetParam().reports);
  delegate->onProgress = [&capture] { capture.reset(); };
  capture->setProgressDelegate(delegate);
  for (const cv::Mat& matrix : ScrolledCaptures(GetParam().captures)) {
    capture->addImageToAdapter(PlatformImage::imageWithCVMat(matrix));
  }
  VelScrollingCapture& held = *capture;
  held.stitchAndReturnFinalImage();
  capture.reset();
  EXPECT_TRUE(watch.expired());
}

INSTANTIATE_TEST_SUITE_P(VelScrollingCapture, Ownership,
                         testing::Values(Ending{"Stitched", 3, 1000}, Ending{"Cancelled", 3, 1},
                                         Ending{"Failed", 0, 1000}, Ending{"OneCapture", 1, 1000}),
                         [](const auto& test) { return test.param.name; });

TEST(OwnershipWithoutAStitch, OutlastsBeingSetUpAgain) {
  auto capture = VelScrollingCapture::init();
  VelScrollingCapture* const object = capture.get();
  const std::weak_ptr<VelScrollingCapture> watch = capture;
  capture.reset();
  object->setupStitcher();
  ASSERT_FALSE(watch.expired()) << "The new listener holds the capture object as the old one did";
  object->cleanupListener();
  EXPECT_TRUE(watch.expired());
}

TEST(OwnershipWithoutAStitch, KeepsItselfAliveUntilTheListenerIsCleanedUp) {
  auto capture = VelScrollingCapture::init();
  VelScrollingCapture* const object = capture.get();
  const std::weak_ptr<VelScrollingCapture> watch = capture;
  capture.reset();
  ASSERT_FALSE(watch.expired()) << "The listener holds the capture object that owns it";
  object->cleanupListener();
  EXPECT_TRUE(watch.expired());
}

}  // namespace
}  // namespace ScrollingCapture
