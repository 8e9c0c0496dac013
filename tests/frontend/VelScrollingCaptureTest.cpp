#include <atomic>
#include <limits>
#include <memory>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <opencv2/imgproc.hpp>
#include <testkit/pages/ScrolledCaptures.h>
#include <tests/frontend/CaptureObject.h>

#include <VelScrollingCapture/frontend/VelScrollingCapture.h>

namespace ScrollingCapture {
namespace {

using Testing::CaptureObject;
using Testing::Delegate;
using Testing::SameBits;
using Testing::ScrolledCaptures;
using Testing::ScrolledPage;

constexpr double NotANumber = std::numeric_limits<double>::quiet_NaN();

TEST_F(CaptureObject, StartsWithAdapterAndListenerAndWithoutPreview) {
  EXPECT_NE(capture->stitcherAdapter(), nullptr);
  EXPECT_NE(capture->progressListener(), nullptr);
  EXPECT_EQ(capture->previewImageCreator(), nullptr);
  EXPECT_EQ(capture->progressDelegate(), nullptr);
  EXPECT_EQ(capture->previewImageSize(), (ImageSize{250, 250}));
  EXPECT_FALSE(capture->errorDuringStitching());
  EXPECT_TRUE(capture->continueStitching());
}

TEST_F(CaptureObject, KeepsTheFirstCapture) {
  Add(ScrolledCaptures(1)[0]);
  EXPECT_EQ(Count(), 1U);
  EXPECT_NE(capture->previewImageCreator(), nullptr);
}

TEST_F(CaptureObject, KeepsTheFirstCaptureEvenIfItIsAbsent) {
  capture->addImageToAdapter(std::nullopt);
  EXPECT_EQ(Count(), 1U);
  EXPECT_TRUE(capture->stitcherAdapter()->GetLastImage()->empty());
  EXPECT_TRUE(capture->currentImagePreview().has_value());
  EXPECT_FALSE(capture->stitchAndReturnFinalImage().has_value()) << "It has no pixel";
}

TEST_F(CaptureObject, KeepsTheFirstCaptureEvenIfItHasNoPixel) {
  capture->addImageToAdapter(PlatformImage());
  EXPECT_EQ(Count(), 1U);
}

TEST_F(CaptureObject, DropsARepeatedCaptureFromStitchAndPreview) {
  const cv::Mat matrix = ScrolledCaptures(1)[0];
  Add(matrix);
  const cv::Mat before = capture->previewImageCreator()->GetPreview();
  Add(matrix);
  EXPECT_EQ(Count(), 1U);
  EXPECT_TRUE(SameBits(capture->previewImageCreator()->GetPreview(), before));
}

TEST_F(CaptureObject, DropsACaptureThatCannotBeComparedWithTheLast) {
  Add(ScrolledCaptures(1)[0]);
  capture->addImageToAdapter(std::nullopt);
  Add(Testing::NoiseCapture({5, 5}, 1));
  EXPECT_EQ(Count(), 1U);
}

TEST_F(CaptureObject, TellsWhatHasBecomeOfEachCapture) {
  using State = CaptureOutcome::State;
  const std::vector<cv::Mat> captures = ScrolledCaptures(2);
  const auto add = [this](const cv::Mat& matrix) {
    return capture->addCapture(PlatformImage::imageWithCVMat(matrix));
  };
  EXPECT_EQ(add(captures[0]).state, State::Placed);
  EXPECT_EQ(add(captures[0]).state, State::Repeated);
  EXPECT_EQ(add(captures[1]).state, State::Placed);
  const CaptureOutcome refused = add(Testing::NoiseCapture({5, 5}, 1));
  EXPECT_EQ(refused.state, State::Unusable);
  EXPECT_NE(refused.reason.find("5 x 5 pixels"), std::string::npos) << refused.reason;
  EXPECT_EQ(capture->addCapture(std::nullopt).state, State::Unusable);
  EXPECT_EQ(Count(), 2U);
}

TEST_F(CaptureObject, KeepsTheHostsImageAsItIs) {
  const std::vector<cv::Mat> captures = ScrolledCaptures(2);
  const PlatformImage second = PlatformImage::imageWithCVMat(captures[1]);
  Add(captures[0]);
  capture->addImageToAdapter(second);
  ASSERT_TRUE(capture->stitchAndReturnFinalImage().has_value());
  EXPECT_TRUE(SameBits(second.CVMat(), captures[1]));
}

TEST_F(CaptureObject, TakesGreyCaptures) {
  std::vector<cv::Mat> captures = ScrolledCaptures(2);
  for (const cv::Mat& matrix : captures) {
    Add(PlatformImage::imageWithCVMat(matrix).CVGrayscaleMat());
  }
  const auto image = capture->stitchAndReturnFinalImage();
  ASSERT_TRUE(image.has_value());
  const PlatformImage page = PlatformImage::imageWithCVMat(ScrolledPage(2));
  const PlatformImage grey = PlatformImage::imageWithCVMat(page.CVGrayscaleMat());
  EXPECT_TRUE(SameBits(image->CVMat(), grey.CVMat()));
}

TEST_F(CaptureObject, StitchesTheSameImageAsTheAdapter) {
  StitcherAdapter adapter;
  for (cv::Mat& matrix : ScrolledCaptures(5)) {
    adapter.Add(matrix);
  }
  ASSERT_TRUE(adapter.stitchImages());
  AddAll(ScrolledCaptures(5));
  const auto image = capture->stitchAndReturnFinalImage();
  ASSERT_TRUE(image.has_value());
  EXPECT_TRUE(SameBits(image->CVMat(), adapter.getResult()));
  EXPECT_TRUE(SameBits(image->CVMat(), ScrolledPage(5)));
}

TEST_F(CaptureObject, RunsToItsEndWithoutADelegate) {
  AddAll(ScrolledCaptures(3));
  EXPECT_TRUE(capture->setCurrentProgress(10));
  EXPECT_TRUE(capture->stitchAndReturnFinalImage().has_value());
}

TEST_F(CaptureObject, TellsTheDelegateTheProgressUpTo100) {
  const auto delegate = std::make_shared<Delegate>();
  capture->setProgressDelegate(delegate);
  AddAll(ScrolledCaptures(4));
  ASSERT_TRUE(capture->stitchAndReturnFinalImage().has_value());
  ASSERT_FALSE(delegate->heard.empty());
  EXPECT_EQ(delegate->heard.back(), 100);
  EXPECT_EQ(delegate->questions, delegate->heard.size());
}

TEST_F(CaptureObject, GivesNothingWhenTheDelegateStopsAtTheFirstReport) {
  const auto delegate = std::make_shared<Delegate>(1);
  capture->setProgressDelegate(delegate);
  AddAll(ScrolledCaptures(3));
  EXPECT_FALSE(capture->stitchAndReturnFinalImage().has_value());
  EXPECT_EQ(delegate->heard.size(), 1U);
  EXPECT_EQ(capture->progressListener(), nullptr);
}

TEST_F(CaptureObject, GivesNothingWithoutCaptures) {
  EXPECT_FALSE(capture->stitchAndReturnFinalImage().has_value());
  EXPECT_EQ(capture->progressListener(), nullptr);
}

TEST_F(CaptureObject, GivesNothingWhenOpenCVFailsWhileComposing) {
  for (cv::Mat& matrix : ScrolledCaptures(2)) {
    cv::Mat withoutAlpha;
    cv::cvtColor(matrix, withoutAlpha, cv::COLOR_RGBA2RGB);
    capture->stitcherAdapter()->Add(withoutAlpha);
  }
  EXPECT_FALSE(capture->stitchAndReturnFinalImage().has_value());
  EXPECT_EQ(capture->progressListener(), nullptr);
}

TEST_F(CaptureObject, RefusesASecondStitch) {
  const auto delegate = std::make_shared<Delegate>();
  capture->setProgressDelegate(delegate);
  AddAll(ScrolledCaptures(2));
  ASSERT_TRUE(capture->stitchAndReturnFinalImage().has_value());
  const size_t messages = delegate->heard.size();
  EXPECT_FALSE(capture->stitchAndReturnFinalImage().has_value());
  EXPECT_TRUE(capture->stitcherAdapter()->stitchImages()) << "No listener is left to be called";
  EXPECT_EQ(delegate->heard.size(), messages);
}

TEST_F(CaptureObject, CanBeSetUpAgain) {
  capture->setPreviewImageSize({10, 10});
  StitcherAdapter* const adapter = capture->stitcherAdapter();
  capture->setupStitcher();
  EXPECT_EQ(capture->stitcherAdapter(), adapter);
  EXPECT_EQ(capture->previewImageSize(), (ImageSize{250, 250}));
  AddAll(ScrolledCaptures(2));
  EXPECT_TRUE(capture->stitchAndReturnFinalImage().has_value());
}

TEST_F(CaptureObject, GivesTheDelegatesAnswerToContinueStitching) {
  const auto delegate = std::make_shared<Delegate>(0);
  capture->setProgressDelegate(delegate);
  EXPECT_FALSE(capture->continueStitching());
  EXPECT_TRUE(delegate->heard.empty());
  EXPECT_FALSE(capture->setCurrentProgress(7));
  EXPECT_EQ(delegate->heard, std::vector<int>{7});
}

TEST_F(CaptureObject, DoesNotKeepTheDelegateAlive) {
  auto delegate = std::make_shared<Delegate>(0);
  capture->setProgressDelegate(delegate);
  EXPECT_EQ(delegate.use_count(), 1);
  delegate.reset();
  EXPECT_EQ(capture->progressDelegate(), nullptr);
  EXPECT_TRUE(capture->continueStitching());
  EXPECT_TRUE(capture->setCurrentProgress(1));
}

TEST_F(CaptureObject, StopsWhenTheDelegateLeavesBetweenItsTwoMessages) {
  const auto delegate = std::make_shared<Delegate>();
  delegate->onProgress = [this] { capture->setProgressDelegate(nullptr); };
  capture->setProgressDelegate(delegate);
  EXPECT_FALSE(capture->setCurrentProgress(1));
  EXPECT_EQ(delegate->questions, 0U);
}

TEST_F(CaptureObject, GivesNoPreviewBeforeACapture) {
  EXPECT_FALSE(capture->currentImagePreview().has_value());
}

TEST_F(CaptureObject, BuildsThePreviewAtThePreviewSizeOfTheFirstCapture) {
  capture->setPreviewImageSize({300.9, 80.9});
  const std::vector<cv::Mat> captures = ScrolledCaptures(2);
  Add(captures[0]);
  capture->setPreviewImageSize({1000, 1000});
  Add(captures[1]);

  PreviewImage expected({300, 80}, 1, 0);
  expected.AddCapture(captures[0]);
  expected.AddCapture(captures[1]);
  const auto preview = capture->currentImagePreview();
  ASSERT_TRUE(preview.has_value());
  EXPECT_TRUE(SameBits(preview->CVMat(), expected.GetPreview(1000, 1000)));
}

TEST_F(CaptureObject, FitsThePreviewIntoThePresentPreviewSize) {
  Add(ScrolledCaptures(1)[0]);
  capture->setPreviewImageSize({50.9, 60.9});
  const auto preview = capture->currentImagePreview();
  ASSERT_TRUE(preview.has_value());
  EXPECT_TRUE(SameBits(preview->CVMat(), capture->previewImageCreator()->GetPreview(50, 60)));
}

TEST_F(CaptureObject, GivesNoPreviewInABoxWithoutAPixel) {
  Add(ScrolledCaptures(1)[0]);
  for (const ImageSize& size : {ImageSize{0, 0}, ImageSize{0.9, 10}, ImageSize{10, -3},
                                ImageSize{NotANumber, 10}, ImageSize{-1e300, 1e300}}) {
    capture->setPreviewImageSize(size);
    EXPECT_FALSE(capture->currentImagePreview().has_value()) << size.width << " x " << size.height;
  }
}

TEST_F(CaptureObject, KeepsCapturesWhenNoPreviewCanBeMade) {
  capture->setPreviewImageSize({-10, 20});
  AddAll(ScrolledCaptures(2));
  EXPECT_EQ(Count(), 2U);
  EXPECT_FALSE(capture->currentImagePreview().has_value());
  EXPECT_TRUE(capture->stitchAndReturnFinalImage().has_value());
}

TEST_F(CaptureObject, RendersGreyIntoColour) {
  const cv::Mat grey(2, 3, CV_8UC1, cv::Scalar(9));
  const auto bitmap = capture->bitmapImageRepresentation(PlatformImage::imageWithCVMat(grey));
  ASSERT_TRUE(bitmap.has_value());
  EXPECT_FALSE(bitmap->isGrey());
  EXPECT_TRUE(SameBits(bitmap->CVMat(), cv::Mat(2, 3, CV_8UC4, cv::Scalar(9, 9, 9, 255))));
}

TEST_F(CaptureObject, RendersNothingWithoutAPixel) {
  EXPECT_FALSE(capture->bitmapImageRepresentation(PlatformImage()).has_value());
}

TEST_F(CaptureObject, SwapsItsLibraryObjectsWithoutFreeingThem) {
  const std::unique_ptr<StitcherAdapter> adapter(capture->stitcherAdapter());
  auto* const otherAdapter = new StitcherAdapter(ScrollOrientation::Vertical, false, 1);
  capture->setStitcherAdapter(otherAdapter);
  EXPECT_EQ(capture->stitcherAdapter(), otherAdapter);
  EXPECT_TRUE(adapter->IsEmpty());

  auto* const preview = new PreviewImage({10, 10}, 0, 0);
  capture->setPreviewImageCreator(preview);
  EXPECT_EQ(capture->previewImageCreator(), preview);

  const std::unique_ptr<ProgressListener> listener(capture->progressListener());
  capture->setProgressListener(nullptr);
  EXPECT_EQ(capture->progressListener(), nullptr);
  EXPECT_TRUE(listener->ProgressCallback(1));
}

TEST_F(CaptureObject, StitchesForTheAdaptersListenerWithoutOneOfItsOwn) {
  const auto delegate = std::make_shared<Delegate>();
  capture->setProgressDelegate(delegate);
  AddAll(ScrolledCaptures(2));
  const std::unique_ptr<ProgressListener> listener(capture->progressListener());
  capture->setProgressListener(nullptr);
  EXPECT_TRUE(capture->stitchAndReturnFinalImage().has_value());
  EXPECT_EQ(delegate->heard.back(), 100) << "The adapter still tells the listener it was given";
  EXPECT_FALSE(capture->stitchAndReturnFinalImage().has_value());
}

TEST_F(CaptureObject, LeavesTheHostsListenerToTheAdapterUntilTheStitch) {
  AddAll(ScrolledCaptures(2));
  ProgressListener own(VelScrollingCapture::init());
  capture->stitcherAdapter()->setProgressListener(&own);
  capture->cleanupListener();
  EXPECT_EQ(capture->stitcherAdapter()->progressListener(), &own);
  EXPECT_TRUE(capture->stitchAndReturnFinalImage().has_value());
  EXPECT_EQ(capture->stitcherAdapter()->progressListener(), nullptr);
}

/// Has parts of its own.
class CaptureWithOwnParts : public VelScrollingCapture {
 public:
  StitcherAdapter* stitcherAdapter() const override { return &ownAdapter; }
  PreviewImage* previewImageCreator() const override { return &ownPreview; }

 private:
  mutable StitcherAdapter ownAdapter;
  mutable PreviewImage ownPreview{{40, 30}, 1, 0};
};

TEST(DerivedCaptureObject, WorksOnPartsOfItsOwn) {
  const auto own = std::make_shared<CaptureWithOwnParts>();
  own->setupStitcher();
  for (const int index : {0, 1, 1}) {
    own->addImageToAdapter(PlatformImage::imageWithCVMat(ScrolledCaptures(2)[index]));
  }
  EXPECT_EQ(own->stitcherAdapter()->Count(), 2U) << "A repeat of the own last capture is dropped";
  own->setPreviewImageSize({50, 60});
  const cv::Mat preview = own->previewImageCreator()->GetPreview(50, 60);
  EXPECT_TRUE(SameBits(own->currentImagePreview()->CVMat(), preview));
  EXPECT_TRUE(SameBits(own->stitchAndReturnFinalImage()->CVMat(), ScrolledPage(2)));
  EXPECT_EQ(own.use_count(), 1);
}

TEST_F(CaptureObject, DoesNothingWithoutAnAdapter) {
  const std::unique_ptr<StitcherAdapter> adapter(capture->stitcherAdapter());
  capture->setStitcherAdapter(nullptr);
  Add(ScrolledCaptures(1)[0]);
  EXPECT_FALSE(capture->stitchAndReturnFinalImage().has_value());
}

TEST_F(CaptureObject, ReadsAndWritesItsAtomicPropertiesWhileItStitches) {
  const auto delegate = std::make_shared<Delegate>();
  capture->setProgressDelegate(delegate);
  AddAll(ScrolledCaptures(4));
  std::atomic<bool> done = false;
  std::thread other([&] {
    for (double length = 1; !done; length = length < 100 ? length + 1 : 1) {
      capture->setPreviewImageSize({length, length});
      capture->setProgressDelegate(delegate);
    }
  });
  for (int i = 0; i < 1000; ++i) {
    const ImageSize size = capture->previewImageSize();
    EXPECT_EQ(size.width, size.height);
  }
  EXPECT_TRUE(capture->stitchAndReturnFinalImage().has_value());
  done = true;
  other.join();
}

class ThreadCounts : public testing::TestWithParam<int> {};

TEST_P(ThreadCounts, CountAsOneWhenLess) {
  const auto capture = VelScrollingCapture::initWithExpectConsistentTranslations(false, GetParam());
  for (const cv::Mat& matrix : ScrolledCaptures(3)) {
    capture->addImageToAdapter(PlatformImage::imageWithCVMat(matrix));
  }
  EXPECT_TRUE(SameBits(capture->stitchAndReturnFinalImage()->CVMat(), ScrolledPage(3)));
}

INSTANTIATE_TEST_SUITE_P(CaptureObject, ThreadCounts,
                         testing::Values(0, -1, std::numeric_limits<int>::min()));

}  // namespace
}  // namespace ScrollingCapture
