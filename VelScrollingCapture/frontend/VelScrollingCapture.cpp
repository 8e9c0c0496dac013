#include <algorithm>
#include <new>
#include <utility>

#include <VelScrollingCapture/core/internal/Truncation.h>
#include <VelScrollingCapture/frontend/ExactStitcherAdapter.h>
#include <VelScrollingCapture/frontend/VelScrollingCapture.h>
#include <VelScrollingCapture/session/CaptureIntake.h>
#include <VelScrollingCapture/session/internal/HostPreview.h>

namespace ScrollingCapture {
namespace {

constexpr ImageSize DefaultPreviewSize{250, 250};

template <typename Object>
void ReplaceWithoutFreeing(std::unique_ptr<Object>& owner, Object* object) {
  static_cast<void>(owner.release());
  owner.reset(object);
}

CaptureOutcome Refused(const char* reason) { return {CaptureOutcome::State::Unusable, reason, {}}; }

/// An adapter that joins exactly cannot place what no stitcher takes, and says where the capture
/// lies.
CaptureOutcome AddTo(StitcherAdapter& adapter, PreviewImage* preview, const cv::Mat& capture) {
  constexpr bool KeepRepeats = false;
  CaptureIntake intake(adapter, preview, KeepRepeats);
  auto* const exact = dynamic_cast<ExactStitcherAdapter*>(&adapter);
  if (exact == nullptr) {
    return intake.Add(capture);
  }
  const std::string reason = WhyUnusable(capture);
  if (!reason.empty()) {
    return Refused(reason.c_str());
  }
  const CaptureOutcome outcome = intake.Add(capture);
  return outcome.state == CaptureOutcome::State::Placed
             ? OutcomeOf(exact->PlaceLast(), adapter.Count() == 1)
             : outcome;
}

/// Ends the listener's life with the stitch, also when an exception passes. The completion notice
/// drops the listener's reference to the capture object, which may be the last one but for this.
class EndOfStitch {
 public:
  EndOfStitch(std::shared_ptr<VelScrollingCapture> captureObject, StitcherAdapter& adapter)
      : captureObject(std::move(captureObject)), adapter(adapter) {}
  EndOfStitch(const EndOfStitch&) = delete;
  EndOfStitch& operator=(const EndOfStitch&) = delete;
  ~EndOfStitch() {
    adapter.setProgressListener(nullptr);
    captureObject->cleanupListener();
  }

 private:
  const std::shared_ptr<VelScrollingCapture> captureObject;
  StitcherAdapter& adapter;
};

}  // namespace

std::shared_ptr<VelScrollingCapture> VelScrollingCapture::init() {
  std::shared_ptr<VelScrollingCapture> captureObject(new VelScrollingCapture);
  captureObject->setupStitcher();
  return captureObject;
}

std::shared_ptr<VelScrollingCapture> VelScrollingCapture::initWithExpectConsistentTranslations(
    bool expectConsistentTranslations, int threadCount) {
  std::shared_ptr<VelScrollingCapture> captureObject(new VelScrollingCapture);
  captureObject->_stitcherAdapter = std::make_unique<StitcherAdapter>(
      ScrollOrientation::Both, expectConsistentTranslations, std::max(threadCount, 1));
  captureObject->setupStitcher();
  return captureObject;
}

std::shared_ptr<VelScrollingCapture> VelScrollingCapture::initWithExactJoins(int threadCount) {
  std::shared_ptr<VelScrollingCapture> captureObject(new VelScrollingCapture);
  captureObject->_stitcherAdapter = std::make_unique<ExactStitcherAdapter>(threadCount);
  captureObject->setupStitcher();
  return captureObject;
}

VelScrollingCapture::~VelScrollingCapture() {
  _stitcherAdapter.reset();
  _progressListener.reset();
  _previewImageCreator.reset();
}

void VelScrollingCapture::setupStitcher() {
  if (stitcherAdapter() == nullptr) {
    _stitcherAdapter = std::make_unique<StitcherAdapter>();
  }
  _progressListener = std::make_unique<ProgressListener>(shared_from_this());
  if (StitcherAdapter* const adapter = stitcherAdapter()) {
    adapter->setProgressListener(_progressListener.get());
  }
  setPreviewImageSize(DefaultPreviewSize);
}

void VelScrollingCapture::addImageToAdapter(const std::optional<PlatformImage>& image) {
  addCapture(image);
}

CaptureOutcome VelScrollingCapture::addCapture(const std::optional<PlatformImage>& image) try {
  const cv::Mat capture = image ? image->CVMat() : cv::Mat();
  makePreviewWhenAbsent();
  if (stitcherAdapter() == nullptr) {
    return Refused("has no adapter to be added to");
  }
  return AddTo(*stitcherAdapter(), previewImageCreator(), capture);
} catch (const cv::Exception&) {
  return Refused("cannot be compared with the last one, or finds no memory");
} catch (const std::bad_alloc&) {
  return Refused("finds no memory");
}

std::optional<PlatformImage> VelScrollingCapture::currentImagePreview() try {
  PreviewImage* const preview = previewImageCreator();
  if (preview == nullptr) {
    return std::nullopt;
  }
  const cv::Size size = wholePreviewSize();
  return bitmapImageRepresentation(
      PlatformImage::imageWithCVMat(preview->GetPreview(size.width, size.height)));
} catch (const cv::Exception&) {
  return std::nullopt;
}

std::optional<PlatformImage> VelScrollingCapture::stitchAndReturnFinalImage() {
  StitcherAdapter* const adapter = stitcherAdapter();
  if (adapter == nullptr || (adapter->progressListener() == nullptr && !_progressListener)) {
    return std::nullopt;
  }
  const EndOfStitch end(shared_from_this(), *adapter);
  try {
    if (!adapter->stitchImages()) {
      return std::nullopt;
    }
    return bitmapImageRepresentation(PlatformImage::imageWithCVMat(adapter->getResult()));
  } catch (const cv::Exception&) {
    return std::nullopt;
  }
}

bool VelScrollingCapture::setCurrentProgress(int progress) const {
  if (!progressDelegate()) {
    return true;
  }
  if (const auto delegate = progressDelegate()) {
    delegate->setCurrentProgress(progress);
  }
  const auto delegate = progressDelegate();
  return delegate && delegate->continueScrolling();
}

bool VelScrollingCapture::continueStitching() const {
  const auto delegate = progressDelegate();
  return !delegate || delegate->continueScrolling();
}

bool VelScrollingCapture::errorDuringStitching() const { return _errorDuringStitching; }

void VelScrollingCapture::stitchingComplete(bool /*success*/) { cleanupListener(); }

void VelScrollingCapture::cleanupListener() {
  const std::shared_ptr<VelScrollingCapture> self = weak_from_this().lock();
  StitcherAdapter* const adapter = stitcherAdapter();
  if (adapter != nullptr && adapter->progressListener() == _progressListener.get()) {
    adapter->setProgressListener(nullptr);
  }
  _progressListener.reset();
}

std::optional<PlatformImage> VelScrollingCapture::bitmapImageRepresentation(
    const PlatformImage& image) const try {
  if (image.width() <= 0 || image.height() <= 0) {
    return std::nullopt;
  }
  return image.isGrey() ? PlatformImage::imageWithCVMat(image.CVMat()) : image;
} catch (const cv::Exception&) {
  return std::nullopt;
}

std::shared_ptr<ScrollingProgressDelegate> VelScrollingCapture::progressDelegate() const {
  const std::lock_guard<std::mutex> lock(propertyMutex);
  return _progressDelegate.lock();
}

void VelScrollingCapture::setProgressDelegate(
    const std::shared_ptr<ScrollingProgressDelegate>& delegate) {
  const std::lock_guard<std::mutex> lock(propertyMutex);
  _progressDelegate = delegate;
}

ImageSize VelScrollingCapture::previewImageSize() const {
  const std::lock_guard<std::mutex> lock(propertyMutex);
  return _previewImageSize;
}

void VelScrollingCapture::setPreviewImageSize(const ImageSize& size) {
  const std::lock_guard<std::mutex> lock(propertyMutex);
  _previewImageSize = size;
}

StitcherAdapter* VelScrollingCapture::stitcherAdapter() const { return _stitcherAdapter.get(); }

void VelScrollingCapture::setStitcherAdapter(StitcherAdapter* adapter) {
  ReplaceWithoutFreeing(_stitcherAdapter, adapter);
}

ProgressListener* VelScrollingCapture::progressListener() const { return _progressListener.get(); }

void VelScrollingCapture::setProgressListener(ProgressListener* listener) {
  ReplaceWithoutFreeing(_progressListener, listener);
}

PreviewImage* VelScrollingCapture::previewImageCreator() const {
  return _previewImageCreator.get();
}

void VelScrollingCapture::setPreviewImageCreator(PreviewImage* preview) {
  ReplaceWithoutFreeing(_previewImageCreator, preview);
}

/// A preview that cannot be made must not cost the capture; the next capture tries again.
void VelScrollingCapture::makePreviewWhenAbsent() try {
  if (previewImageCreator() == nullptr) {
    _previewImageCreator = MakeHostPreview(wholePreviewSize());
  }
} catch (const cv::Exception&) {
  return;
}

cv::Size VelScrollingCapture::wholePreviewSize() const {
  const ImageSize size = previewImageSize();
  return {TruncateToInt(size.width), TruncateToInt(size.height)};
}

}  // namespace ScrollingCapture
