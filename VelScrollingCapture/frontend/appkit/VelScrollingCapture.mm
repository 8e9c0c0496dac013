#include <algorithm>
#include <memory>
#include <optional>
#include <utility>

#include <VelScrollingCapture/core/internal/Messages.h>
#include <VelScrollingCapture/frontend/ExactStitcherAdapter.h>
#include <VelScrollingCapture/frontend/VelScrollingCapture.h>
#import <VelScrollingCapture/frontend/appkit/NSImage_OpenCV.h>
#import <VelScrollingCapture/frontend/appkit/VelScrollingCapture.h>
#import <VelScrollingCapture/frontend/appkit/internal/BitmapRendering.h>
#import <VelScrollingCapture/frontend/appkit/internal/Conversion.h>
#import <VelScrollingCapture/frontend/appkit/internal/WeakReference.h>

using CaptureObject = ScrollingCapture::VelScrollingCapture;
using ScrollingCapture::CaptureOutcome;
using ScrollingCapture::PlatformImage;
using ScrollingCapture::AppKit::HasPoints;

namespace {

/// Asks the Objective-C object that it is the inside of for its parts, whose class may have its
/// own.
class InnerCapture : public CaptureObject {
 public:
  explicit InnerCapture(::VelScrollingCapture* outside) : outside(outside) {}

  StitcherAdapter* stitcherAdapter() const override { return [outside stitcherAdapter]; }
  ScrollingCapture::PreviewImage* previewImageCreator() const override {
    return [outside previewImageCreator];
  }

 private:
  ::VelScrollingCapture* outside;
};

}  // namespace

struct __attribute__((visibility("hidden"))) VelScrollingCaptureState {
  std::shared_ptr<InnerCapture> capture;
  ScrollingCapture::AppKit::WeakReference delegate;
};

namespace {

/// Retains an object while it lives, also when an exception passes.
class Retained {
 public:
  explicit Retained(id object) : object([object retain]) {}
  Retained(const Retained&) = delete;
  Retained& operator=(const Retained&) = delete;
  ~Retained() { [object release]; }

 private:
  id object;
};

/// Relays to the Objective-C object, which it retains, instead of the C++ one inside.
class RetainingListener : public ScrollingCapture::ProgressListener {
 public:
  RetainingListener(VelScrollingCapture* receiver, std::shared_ptr<CaptureObject> capture)
      : ProgressListener(std::move(capture)), receiver([receiver retain]) {}
  RetainingListener(const RetainingListener&) = delete;
  RetainingListener& operator=(const RetainingListener&) = delete;
  ~RetainingListener() override { [receiver release]; }

  bool ProgressCallback(int progress) override {
    // Worker threads have no pool of their own.
    NSAutoreleasePool* const pool = [[NSAutoreleasePool alloc] init];
    const bool goOn = [receiver setCurrentProgress:progress];
    [pool drain];
    return goOn;
  }

  void StitchingComplete(bool success) override {
    // The message destroys this listener.
    const Retained held(receiver);
    [receiver stitchingComplete:success];
  }

  bool StitchingError(StitcherErrorCodes /*code*/, bool /*fatal*/) override {
    return [receiver errorDuringStitching];
  }

 private:
  VelScrollingCapture* receiver;
};

/// The image's pixels; nothing where they cannot be had.
std::optional<PlatformImage> PixelsOf(NSImage* image) try {
  const PlatformImage pixels = PlatformImage::imageWithCVMat([image CVMat]);
  return pixels.width() > 0 ? std::optional(pixels) : std::nullopt;
} catch (const cv::Exception&) {
  return std::nullopt;
}

/// Nil when memory runs out.
NSImage* ImageOf(const PlatformImage& image) try {
  // Only a header: the pixels are copied once, into the image.
  const cv::Mat pixels(image.height(), image.width(), CV_8UC4,
                       const_cast<std::uint8_t*>(image.pixels()), image.bytesPerRow());
  return [NSImage imageWithCVMat:pixels];
} catch (const cv::Exception&) {
  return nil;
}

/// An image that has points, but more than a matrix holds or memory has room for, is dropped.
CaptureOutcome AddTo(CaptureObject& capture, NSImage* image) {
  if (!HasPoints(image)) {
    return capture.addCapture(std::nullopt);
  }
  const std::optional<PlatformImage> pixels = PixelsOf(image);
  if (!pixels) {
    return {CaptureOutcome::State::Unusable, "is too large", {}};
  }
  return capture.addCapture(pixels);
}

}  // namespace

@interface VelScrollingCapture ()
- (id)initWithAdapter:(std::unique_ptr<StitcherAdapter>&&)adapter;
@end

@implementation VelScrollingCapture

- (id)init {
  return [self initWithAdapter:std::make_unique<StitcherAdapter>()];
}

- (id)initWithExpectConsistentTranslations:(BOOL)expect andThreadCount:(int)threads {
  return [self
      initWithAdapter:std::make_unique<StitcherAdapter>(
                          ScrollingCapture::Both, static_cast<bool>(expect), std::max(threads, 1))];
}

- (id)initWithExactJoinsAndThreadCount:(int)threads {
  return [self initWithAdapter:std::make_unique<ScrollingCapture::ExactStitcherAdapter>(threads)];
}

- (id)initWithAdapter:(std::unique_ptr<StitcherAdapter>&&)adapter {
  self = [super init];
  if (self != nil) {
    _state = new VelScrollingCaptureState;
    _state->capture = std::make_shared<InnerCapture>(self);
    _state->capture->setStitcherAdapter(adapter.release());
    [self setupStitcher];
  }
  return self;
}

- (void)dealloc {
  delete _state;
  [super dealloc];
}

- (void)setupStitcher {
  // The listener before may hold the last reference.
  const Retained held(self);
  _state->capture->setupStitcher();
  _state->capture->cleanupListener();
  auto listener = std::make_unique<RetainingListener>(self, _state->capture);
  if (StitcherAdapter* const adapter = [self stitcherAdapter]) {
    adapter->setProgressListener(listener.get());
  }
  _state->capture->setProgressListener(listener.release());
}

- (void)addImageToAdapter:(NSImage*)image {
  [self addCapture:image reason:NULL];
}

- (VelCaptureOutcome)addCapture:(NSImage*)image reason:(NSString**)reason {
  const CaptureOutcome outcome = AddTo(*_state->capture, image);
  if (reason != NULL) {
    const char* const text = outcome.reason.c_str();
    *reason = outcome.reason.empty() ? nil : [NSString stringWithUTF8String:text];
  }
  return static_cast<VelCaptureOutcome>(outcome.state);
}

- (NSBitmapImageRep*)currentImagePreview {
  const std::optional<PlatformImage> preview = _state->capture->currentImagePreview();
  return preview ? [self bitmapImageRepresentation:ImageOf(*preview)] : nil;
}

- (NSBitmapImageRep*)stitchAndReturnFinalImage {
  // The completion notice drops the listener's reference, which may be the last one.
  const Retained held(self);
  const std::optional<PlatformImage> image = _state->capture->stitchAndReturnFinalImage();
  NSBitmapImageRep* const bitmap = image ? [self bitmapImageRepresentation:ImageOf(*image)] : nil;
  if (image && bitmap == nil) {
    ScrollingCapture::TellError("Error: The stitched image does not fit into a bitmap.");
  }
  return bitmap;
}

- (BOOL)setCurrentProgress:(int)progress {
  if ([self progressDelegate] == nil) {
    return YES;
  }
  [[self progressDelegate] setCurrentProgress:progress];
  return [[self progressDelegate] continueScrolling];
}

- (BOOL)continueStitching {
  const id<ScrollingProgressDelegate> delegate = [self progressDelegate];
  return delegate == nil || [delegate continueScrolling];
}

- (BOOL)errorDuringStitching {
  return _state->capture->errorDuringStitching();
}

- (void)stitchingComplete:(BOOL)success {
  static_cast<void>(success);
  [self cleanupListener];
}

- (void)cleanupListener {
  VelScrollingCapture* const held = [self retain];
  _state->capture->cleanupListener();
  [held release];
}

- (NSBitmapImageRep*)bitmapImageRepresentation:(NSImage*)image {
  const cv::Size size = ScrollingCapture::AppKit::WholeSize(image);
  if (size.empty()) {
    return nil;
  }
  NSBitmapImageRep* const bitmap =
      [[[NSBitmapImageRep alloc] initWithBitmapDataPlanes:NULL
                                               pixelsWide:size.width
                                               pixelsHigh:size.height
                                            bitsPerSample:8
                                          samplesPerPixel:4
                                                 hasAlpha:YES
                                                 isPlanar:NO
                                           colorSpaceName:NSDeviceRGBColorSpace
                                              bytesPerRow:static_cast<NSInteger>(size.width) * 4
                                             bitsPerPixel:32] autorelease];
  return ScrollingCapture::AppKit::RenderIntoBitmap(image, bitmap) ? bitmap : nil;
}

- (id<ScrollingProgressDelegate>)progressDelegate {
  return _state->delegate.Load();
}

- (void)setProgressDelegate:(id<ScrollingProgressDelegate>)delegate {
  _state->delegate.Store(delegate);
}

- (NSSize)previewImageSize {
  const ScrollingCapture::ImageSize size = _state->capture->previewImageSize();
  return NSMakeSize(size.width, size.height);
}

- (void)setPreviewImageSize:(NSSize)size {
  _state->capture->setPreviewImageSize({size.width, size.height});
}

- (StitcherAdapter*)stitcherAdapter {
  return _state->capture->CaptureObject::stitcherAdapter();
}

- (void)setStitcherAdapter:(StitcherAdapter*)adapter {
  _state->capture->setStitcherAdapter(adapter);
}

- (ScrollingCapture::ProgressListener*)progressListener {
  return _state->capture->progressListener();
}

- (void)setProgressListener:(ScrollingCapture::ProgressListener*)listener {
  _state->capture->setProgressListener(listener);
}

- (ScrollingCapture::PreviewImage*)previewImageCreator {
  return _state->capture->CaptureObject::previewImageCreator();
}

- (void)setPreviewImageCreator:(ScrollingCapture::PreviewImage*)preview {
  _state->capture->setPreviewImageCreator(preview);
}

@end
