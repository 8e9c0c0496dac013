#include <limits>
#include <memory>
#include <stdexcept>
#include <vector>

#include <gtest/gtest.h>
#include <testkit/MessageCapture.h>
#include <testkit/faults/EveryFailure.h>
#include <testkit/pages/ScrolledCaptures.h>

#include <VelScrollingCapture/ScrollingCapture.h>
#import <VelScrollingCapture/frontend/appkit/NSImage_OpenCV.h>
#import <VelScrollingCapture/frontend/appkit/VelScrollingCapture.h>

#include "AbsurdSizes.h"
#include "PoolTest.h"

/// Remembers the progress it is told, and goes on until it has been told `limit` times.
@interface RecordingDelegate : NSObject <ScrollingProgressDelegate> {
 @public
  // GCC's runtime makes no C++ objects inside Objective-C ones.
  std::vector<int>* heard;
  size_t limit;
}
@end

@implementation RecordingDelegate
- (id)init {
  self = [super init];
  if (self != nil) {
    heard = new std::vector<int>;
  }
  return self;
}
- (void)dealloc {
  delete heard;
  [super dealloc];
}
- (void)setCurrentProgress:(int)progress {
  heard->push_back(progress);
}
- (BOOL)continueScrolling {
  return heard->size() < limit;
}
@end

/// Throws when the stitch is about to end, which it hears of on the calling thread.
@interface ThrowingDelegate : NSObject <ScrollingProgressDelegate>
@end

@implementation ThrowingDelegate
- (void)setCurrentProgress:(int)progress {
  if (progress == 100) {
    throw std::runtime_error("The delegate failed.");
  }
}
- (BOOL)continueScrolling {
  return YES;
}
@end

/// Tells when it goes away.
@interface WatchedCapture : VelScrollingCapture {
 @public
  bool* gone;
}
@end

@implementation WatchedCapture
- (void)dealloc {
  *gone = true;
  [super dealloc];
}
@end

/// Has parts of its own.
@interface CaptureWithOwnParts : VelScrollingCapture {
 @public
  StitcherAdapter* ownAdapter;
  ScrollingCapture::PreviewImage* ownPreview;
}
@end

@implementation CaptureWithOwnParts
- (StitcherAdapter*)stitcherAdapter {
  return ownAdapter;
}
- (ScrollingCapture::PreviewImage*)previewImageCreator {
  return ownPreview;
}
@end

namespace ScrollingCapture {
namespace {

using Testing::SameBits;
using Testing::ScrolledCaptures;
using Testing::ScrolledPage;

cv::Mat PixelsOf(NSBitmapImageRep* bitmap) {
  return cv::Mat(static_cast<int>([bitmap pixelsHigh]), static_cast<int>([bitmap pixelsWide]),
                 CV_8UC4, [bitmap bitmapData], static_cast<size_t>([bitmap bytesPerRow]))
      .clone();
}

void AddAll(::VelScrollingCapture* capture, const std::vector<cv::Mat>& captures) {
  for (const cv::Mat& matrix : captures) {
    [capture addImageToAdapter:[NSImage imageWithCVMat:matrix]];
  }
}

/// A capture object that does not outlive its test, stitched or not.
class ObjectiveCCapture : public Testing::PoolTest {
 protected:
  ~ObjectiveCCapture() override {
    [capture setProgressDelegate:nil];
    [capture cleanupListener];
    [capture release];
    [delegate release];
  }

  void Listen(size_t limit) {
    delegate->limit = limit;
    [capture setProgressDelegate:delegate];
  }

  ::VelScrollingCapture* capture = [[::VelScrollingCapture alloc] init];
  RecordingDelegate* delegate = [[RecordingDelegate alloc] init];
};

TEST_F(ObjectiveCCapture, StitchesWithProgressToItsDelegate) {
  Listen(1000);
  AddAll(capture, ScrolledCaptures(4));
  NSBitmapImageRep* const image = [capture stitchAndReturnFinalImage];
  ASSERT_TRUE(image != nil);
  EXPECT_TRUE(SameBits(PixelsOf(image), ScrolledPage(4)));
  ASSERT_FALSE(delegate->heard->empty());
  EXPECT_EQ(delegate->heard->back(), 100);
}

TEST_F(ObjectiveCCapture, ReturnsBitmapsOfFour8BitSamples) {
  AddAll(capture, ScrolledCaptures(2));
  NSBitmapImageRep* const image = [capture stitchAndReturnFinalImage];
  EXPECT_EQ([image bitsPerSample], 8);
  EXPECT_EQ([image samplesPerPixel], 4);
  EXPECT_EQ([image bitsPerPixel], 32);
  EXPECT_EQ([image bytesPerRow], [image pixelsWide] * 4);
  EXPECT_TRUE([image hasAlpha]);
  EXPECT_FALSE([image isPlanar]);
  EXPECT_TRUE([[image colorSpaceName] isEqualToString:NSDeviceRGBColorSpace]);
}

TEST_F(ObjectiveCCapture, GivesTheSameImageAsTheCppObject) {
  const auto other = VelScrollingCapture::init();
  for (const cv::Mat& matrix : ScrolledCaptures(3)) {
    other->addImageToAdapter(PlatformImage::imageWithCVMat(matrix));
  }
  AddAll(capture, ScrolledCaptures(3));
  const auto expected = other->stitchAndReturnFinalImage();
  EXPECT_TRUE(SameBits(PixelsOf([capture stitchAndReturnFinalImage]), expected->CVMat()));
}

TEST_F(ObjectiveCCapture, StitchesOnSeveralThreads) {
  ::VelScrollingCapture* const threaded =
      [[[::VelScrollingCapture alloc] initWithExpectConsistentTranslations:YES
                                                            andThreadCount:3] autorelease];
  delegate->limit = 1000;
  [threaded setProgressDelegate:delegate];
  AddAll(threaded, ScrolledCaptures(5));
  EXPECT_TRUE(SameBits(PixelsOf([threaded stitchAndReturnFinalImage]), ScrolledPage(5)));
  [threaded setProgressDelegate:nil];
}

TEST_F(ObjectiveCCapture, TakesAThreadCountOfLessThanOneForOne) {
  for (const int threads : {0, -1, std::numeric_limits<int>::min()}) {
    ::VelScrollingCapture* const other =
        [[[::VelScrollingCapture alloc] initWithExpectConsistentTranslations:NO
                                                              andThreadCount:threads] autorelease];
    AddAll(other, ScrolledCaptures(3));
    EXPECT_TRUE(SameBits(PixelsOf([other stitchAndReturnFinalImage]), ScrolledPage(3)));
  }
}

TEST_F(ObjectiveCCapture, GivesNilWhenTheDelegateStopsAtTheFirstReport) {
  Listen(1);
  AddAll(capture, ScrolledCaptures(3));
  EXPECT_TRUE([capture stitchAndReturnFinalImage] == nil);
  EXPECT_EQ(delegate->heard->size(), 1U);
}

TEST_F(ObjectiveCCapture, GivesNilWithoutCapturesAndForASecondStitch) {
  EXPECT_TRUE([capture stitchAndReturnFinalImage] == nil);
  AddAll(capture, ScrolledCaptures(2));
  EXPECT_TRUE([capture stitchAndReturnFinalImage] == nil);
  EXPECT_EQ([capture progressListener], nullptr);
}

/// Counts what it is told, and lets everything go on.
class CountingListener : public IStitcherListener {
 public:
  bool ProgressCallback(int /*progress*/) override { return ++reports > 0; }
  void StitchingComplete(bool /*success*/) override { ++completions; }
  bool StitchingError(StitcherErrorCodes /*code*/, bool /*fatal*/) override { return false; }

  int reports = 0;
  int completions = 0;
};

TEST_F(ObjectiveCCapture, StitchesForTheAdaptersListenerWithoutOneOfItsOwn) {
  Listen(1000);
  AddAll(capture, ScrolledCaptures(2));
  const std::unique_ptr<ProgressListener> listener([capture progressListener]);
  [capture setProgressListener:nullptr];
  EXPECT_TRUE([capture stitchAndReturnFinalImage] != nil);
  EXPECT_EQ(delegate->heard->back(), 100) << "The adapter still tells the listener it was given";
  EXPECT_TRUE([capture stitchAndReturnFinalImage] == nil);
}

TEST_F(ObjectiveCCapture, StitchesForAListenerOfTheHostsOwn) {
  Listen(1000);
  AddAll(capture, ScrolledCaptures(2));
  CountingListener own;
  [capture stitcherAdapter]->setProgressListener(&own);
  [capture cleanupListener];
  EXPECT_TRUE([capture stitchAndReturnFinalImage] != nil);
  EXPECT_GT(own.reports, 0);
  EXPECT_EQ(own.completions, 1);
  EXPECT_TRUE(delegate->heard->empty());
  EXPECT_TRUE([capture stitchAndReturnFinalImage] == nil);
}

TEST_F(ObjectiveCCapture, StitchesWhatASetAdapterHolds) {
  const std::unique_ptr<StitcherAdapter> before([capture stitcherAdapter]);
  [capture setStitcherAdapter:new StitcherAdapter];
  AddAll(capture, ScrolledCaptures(3));
  EXPECT_TRUE(SameBits(PixelsOf([capture stitchAndReturnFinalImage]), ScrolledPage(3)));
  EXPECT_TRUE(before->IsEmpty());
}

TEST_F(ObjectiveCCapture, WorksOnThePartsOfItsSubclass) {
  StitcherAdapter adapter;
  PreviewImage preview({40, 30}, 1, 0);
  CaptureWithOwnParts* const own = [[[CaptureWithOwnParts alloc] init] autorelease];
  own->ownAdapter = &adapter;
  own->ownPreview = &preview;
  [own setupStitcher];
  AddAll(own, ScrolledCaptures(2));
  AddAll(own, {ScrolledCaptures(2)[1]});
  EXPECT_EQ(adapter.Count(), 2U) << "A repeat of the subclass's last capture is dropped";
  [own setPreviewImageSize:NSMakeSize(50, 60)];
  EXPECT_TRUE(SameBits(PixelsOf([own currentImagePreview]), preview.GetPreview(50, 60)));
  EXPECT_TRUE(SameBits(PixelsOf([own stitchAndReturnFinalImage]), ScrolledPage(2)));
  EXPECT_TRUE(SameBits(adapter.getResult(), ScrolledPage(2)));
}

TEST_F(ObjectiveCCapture, GivesNoPreviewBeforeACapture) {
  EXPECT_TRUE([capture currentImagePreview] == nil);
}

TEST_F(ObjectiveCCapture, FitsThePreviewIntoThePreviewSize) {
  AddAll(capture, ScrolledCaptures(2));
  [capture setPreviewImageSize:NSMakeSize(50.9, 60.9)];
  const cv::Mat expected = [capture previewImageCreator]->GetPreview(50, 60);
  EXPECT_TRUE(SameBits(PixelsOf([capture currentImagePreview]), expected));
}

TEST_F(ObjectiveCCapture, DropsARepeatedCapture) {
  AddAll(capture, ScrolledCaptures(1));
  AddAll(capture, ScrolledCaptures(1));
  EXPECT_EQ([capture stitcherAdapter]->Count(), 1U);
}

TEST_F(ObjectiveCCapture, KeepsTheFirstCaptureEvenIfItIsNil) {
  [capture addImageToAdapter:nil];
  [capture addImageToAdapter:nil];
  EXPECT_EQ([capture stitcherAdapter]->Count(), 1U);
  EXPECT_TRUE([capture stitchAndReturnFinalImage] == nil);
}

TEST_F(ObjectiveCCapture, TellsWhatHasBecomeOfEachCapture) {
  const auto outcome = [this](const cv::Mat& matrix, NSString** reason) {
    return [capture addCapture:[NSImage imageWithCVMat:matrix] reason:reason];
  };
  NSString* reason = @"stale";
  EXPECT_EQ(outcome(ScrolledCaptures(1)[0], &reason), VelCapturePlaced);
  EXPECT_TRUE(reason == nil);
  EXPECT_EQ(outcome(ScrolledCaptures(1)[0], NULL), VelCaptureRepeated);
  EXPECT_EQ(outcome(Testing::NoiseCapture({5, 5}, 1), &reason), VelCaptureUnusable);
  EXPECT_TRUE([reason hasPrefix:@"has 5 x 5 pixels"]);
}

TEST_F(ObjectiveCCapture, JoinsExactlyWhereAskedTo) {
  const cv::Mat page = Testing::NoiseCapture({200, 900}, 5);
  ::VelScrollingCapture* const exact =
      [[::VelScrollingCapture alloc] initWithExactJoinsAndThreadCount:2];
  const auto outcome = [&](int row) {
    const cv::Mat matrix = page(cv::Rect(0, row, 200, 160)).clone();
    return [exact addCapture:[NSImage imageWithCVMat:matrix] reason:NULL];
  };
  EXPECT_EQ(outcome(0), VelCapturePlaced);
  EXPECT_EQ(outcome(300), VelCaptureTooFast);
  EXPECT_EQ(outcome(100), VelCapturePlaced);
  EXPECT_EQ(outcome(200), VelCapturePlaced);
  NSBitmapImageRep* const image = [exact stitchAndReturnFinalImage];
  EXPECT_TRUE(SameBits(PixelsOf(image), page.rowRange(0, 460).clone()));
  [exact release];
}

TEST_F(ObjectiveCCapture, AnswersYesWithoutADelegate) {
  EXPECT_TRUE([capture setCurrentProgress:5]);
  EXPECT_TRUE([capture continueStitching]);
}

TEST_F(ObjectiveCCapture, GivesTheDelegatesAnswer) {
  Listen(1);
  EXPECT_TRUE([capture continueStitching]);
  EXPECT_FALSE([capture setCurrentProgress:5]);
  EXPECT_FALSE([capture continueStitching]);
  EXPECT_EQ(*delegate->heard, std::vector<int>{5});
}

TEST_F(ObjectiveCCapture, DoesNotRetainItsDelegate) {
  const NSUInteger before = [delegate retainCount];
  [capture setProgressDelegate:delegate];
  EXPECT_EQ([delegate retainCount], before);
}

TEST_F(ObjectiveCCapture, CanBeReadByKeyValueCoding) {
  Listen(1000);
  EXPECT_TRUE([capture valueForKey:@"progressDelegate"] == delegate);
  EXPECT_TRUE([[capture valueForKey:@"continueStitching"] boolValue]);
  EXPECT_FALSE([[capture valueForKey:@"errorDuringStitching"] boolValue]);
  const NSSize size = [[capture valueForKey:@"previewImageSize"] sizeValue];
  EXPECT_EQ(size.width, 250);
  EXPECT_EQ(size.height, 250);
}

TEST_F(ObjectiveCCapture, RendersNothingWithoutAWholePoint) {
  for (const NSSize size : {NSMakeSize(0, 5), NSMakeSize(0.9, 5), NSMakeSize(5, 0)}) {
    NSImage* const image = [[[NSImage alloc] initWithSize:size] autorelease];
    EXPECT_TRUE([capture bitmapImageRepresentation:image] == nil);
  }
}

TEST_F(ObjectiveCCapture, RendersNothingForNilOrAnAbsurdSize) {
  EXPECT_TRUE([capture bitmapImageRepresentation:nil] == nil);
  for (const NSSize& size : Testing::AbsurdSizes()) {
    NSImage* const image = [[[NSImage alloc] initWithSize:size] autorelease];
    EXPECT_TRUE([capture bitmapImageRepresentation:image] == nil)
        << size.width << " x " << size.height;
  }
}

TEST_F(ObjectiveCCapture, DropsCapturesOfAnAbsurdSize) {
  for (const NSSize& size : Testing::AbsurdSizes()) {
    NSImage* const image = [NSImage imageWithCVMat:ScrolledCaptures(1)[0]];
    [image setSize:size];
    [capture addImageToAdapter:image];
    EXPECT_TRUE([capture stitcherAdapter]->IsEmpty()) << size.width << " x " << size.height;
  }
  AddAll(capture, ScrolledCaptures(2));
  EXPECT_TRUE(SameBits(PixelsOf([capture stitchAndReturnFinalImage]), ScrolledPage(2)));
}

TEST_F(ObjectiveCCapture, KeepsACaptureOrLeavesItToBeAddedAgainWhereMemoryRunsOut) {
  const std::vector<cv::Mat> captures = ScrolledCaptures(2);
  AddAll(capture, {captures[0]});
  NSImage* const second = [NSImage imageWithCVMat:captures[1]];
  const auto add = [&](size_t passing) {
    const Testing::FailingAllocator memory(passing, Testing::FailingAllocator::All);
    [capture addImageToAdapter:second];
    return memory.HasFailed();
  };
  EXPECT_GT(Testing::CountFailingAttempts(add), 0);
  EXPECT_EQ([capture stitcherAdapter]->Count(), 2U);
  EXPECT_TRUE(SameBits(PixelsOf([capture stitchAndReturnFinalImage]), ScrolledPage(2)));
}

TEST_F(ObjectiveCCapture, GivesTheWholeImageOrNilWhereMemoryRunsOut) {
  NSImage* const image = [NSImage imageWithCVMat:ScrolledCaptures(1)[0]];
  AddAll(capture, ScrolledCaptures(2));
  const auto show = [&](Testing::MemoryFault& fault) {
    NSBitmapImageRep *rendered = nil, *preview = nil;
    const bool failed = fault.HitsDuring([&] {
      rendered = [capture bitmapImageRepresentation:image];
      preview = [capture currentImagePreview];
    });
    EXPECT_FALSE(fault.HasThrown());
    EXPECT_EQ(rendered == nil || preview == nil, failed);
  };
  Testing::ForEachFailingAllocation(Testing::FailingAllocator::First, show);
}

TEST_F(ObjectiveCCapture, SaysSoWhenTheStitchedImageDoesNotFitIntoABitmap) {
  AddAll(capture, ScrolledCaptures(1));
  const Testing::MessageCapture messages;
  // The first allocation is the inner object's own copy of the image.
  const Testing::FailingAllocator memory(1, Testing::FailingAllocator::First);
  EXPECT_TRUE([capture stitchAndReturnFinalImage] == nil);
  ASSERT_EQ(messages.Messages().size(), 1U);
  EXPECT_EQ(messages.Messages()[0].second, "Error: The stitched image does not fit into a bitmap.");
}

TEST_F(ObjectiveCCapture, RendersGreyIntoColour) {
  NSImage* const grey = [NSImage imageWithCVMat:cv::Mat(2, 3, CV_8UC1, cv::Scalar(9))];
  EXPECT_TRUE(SameBits(PixelsOf([capture bitmapImageRepresentation:grey]),
                       cv::Mat(2, 3, CV_8UC4, cv::Scalar(9, 9, 9, 255))));
}

TEST_F(ObjectiveCCapture, SwapsItsAdapterWithoutFreeingIt) {
  const std::unique_ptr<StitcherAdapter> adapter([capture stitcherAdapter]);
  auto* const other = new StitcherAdapter;
  [capture setStitcherAdapter:other];
  EXPECT_EQ([capture stitcherAdapter], other);
  EXPECT_TRUE(adapter->IsEmpty());
}

TEST_F(ObjectiveCCapture, SwapsItsPreviewAndItsListenerWithoutFreeingThem) {
  auto* const preview = new PreviewImage({10, 10}, 0, 0);
  [capture setPreviewImageCreator:preview];
  EXPECT_EQ([capture previewImageCreator], preview);

  const std::unique_ptr<ProgressListener> listener([capture progressListener]);
  [capture setProgressListener:nullptr];
  EXPECT_TRUE([capture progressListener] == nullptr);
  EXPECT_TRUE(listener->ProgressCallback(1));
}

class ObjectiveCOwnership : public Testing::PoolTest {
 protected:
  void Start() {
    capture = [[WatchedCapture alloc] init];
    capture->gone = &gone;
  }

  bool gone = false;
  WatchedCapture* capture = nil;
};

TEST_F(ObjectiveCOwnership, EndsWithTheStitch) {
  Start();
  AddAll(capture, ScrolledCaptures(2));
  [capture release];
  EXPECT_FALSE(gone) << "The listener retains the capture object";
  [capture stitchAndReturnFinalImage];
  EXPECT_TRUE(gone);
}

TEST_F(ObjectiveCOwnership, EndsWithAFailedStitch) {
  Start();
  [capture stitchAndReturnFinalImage];
  EXPECT_FALSE(gone);
  [capture release];
  EXPECT_TRUE(gone);
}

TEST_F(ObjectiveCOwnership, EndsWithAStitchThatAnExceptionStops) {
  Start();
  AddAll(capture, ScrolledCaptures(2));
  ThrowingDelegate* const delegate = [[[ThrowingDelegate alloc] init] autorelease];
  [capture setProgressDelegate:delegate];
  EXPECT_THROW([capture stitchAndReturnFinalImage], std::runtime_error);
  EXPECT_FALSE(gone);
  [capture setProgressDelegate:nil];
  [capture release];
  EXPECT_TRUE(gone);
}

TEST_F(ObjectiveCOwnership, OutlastsBeingSetUpAgainAfterTheHostHasLetGo) {
  Start();
  [capture release];
  [capture setupStitcher];
  ASSERT_FALSE(gone) << "The new listener retains the capture object as the old one did";
  AddAll(capture, ScrolledCaptures(2));
  EXPECT_TRUE([capture stitchAndReturnFinalImage] != nil);
  EXPECT_TRUE(gone);
}

TEST_F(ObjectiveCOwnership, EndsWithTheListenerWhenNothingIsStitched) {
  Start();
  [capture release];
  ASSERT_FALSE(gone) << "The listener retains the capture object";
  [capture cleanupListener];
  EXPECT_TRUE(gone);
}

}  // namespace
}  // namespace ScrollingCapture
