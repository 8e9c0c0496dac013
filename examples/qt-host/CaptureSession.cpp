#include "CaptureSession.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <optional>

using ScrollingCapture::PlatformImage;

namespace {

/// The library's pixels are red, green, blue and alpha, with colour premultiplied.
constexpr QImage::Format PixelFormat = QImage::Format_RGBA8888_Premultiplied;

PlatformImage PlatformImageOf(const QImage& image) {
  QImage pixels = image.convertToFormat(PixelFormat);
  const cv::Mat matrix(pixels.height(), pixels.width(), CV_8UC4, pixels.bits(),
                       static_cast<size_t>(pixels.bytesPerLine()));
  return PlatformImage::imageWithCVMat(matrix);  // copies the pixels
}

QImage ImageOf(const std::optional<PlatformImage>& image) {
  if (!image) {
    return {};
  }
  return QImage(image->pixels(), image->width(), image->height(),
                static_cast<int>(image->bytesPerRow()), PixelFormat)
      .copy();
}

int WorkerThreads() { return static_cast<int>(std::max(1U, std::thread::hardware_concurrency())); }

}  // namespace

/// Called by the library on worker threads: signals cross over to the user interface by themselves.
class StitchProgress : public ScrollingCapture::ScrollingProgressDelegate {
 public:
  explicit StitchProgress(CaptureSession* session) : session(session) {}

  void setCurrentProgress(int progress) override { emit session->progressed(progress); }
  bool continueScrolling() override { return !cancelled; }
  void cancel() { cancelled = true; }

 private:
  CaptureSession* session;
  std::atomic<bool> cancelled{false};
};

CaptureSession::CaptureSession(QObject* parent)
    : QObject(parent),
      capture(ScrollingCapture::VelScrollingCapture::initWithExpectConsistentTranslations(
          false, WorkerThreads())),
      progress(std::make_shared<StitchProgress>(this)) {
  capture->setProgressDelegate(progress);
}

CaptureSession::~CaptureSession() {
  cancel();
  if (worker.joinable()) {
    worker.join();
  }
  capture->cleanupListener();  // or else a capture that was not stitched would keep itself alive
}

void CaptureSession::add(const QImage& grab) { capture->addImageToAdapter(PlatformImageOf(grab)); }

QImage CaptureSession::preview() const { return ImageOf(capture->currentImagePreview()); }

void CaptureSession::stitch() {
  worker = std::thread([this] { stitchOnWorker(); });
}

void CaptureSession::cancel() { progress->cancel(); }

void CaptureSession::stitchOnWorker() {
  QImage image;
  try {
    image = ImageOf(capture->stitchAndReturnFinalImage());
  } catch (const std::exception& error) {  // on its way out of the thread it would end the process
    qWarning("%s", error.what());
  }
  if (image.isNull()) {
    emit stopped();
  } else {
    emit stitched(image);
  }
}
