#include "CaptureRun.h"

#include <algorithm>
#include <exception>
#include <optional>

using ScrollingCapture::CaptureOutcome;
using ScrollingCapture::SessionResult;
using ScrollingCapture::SessionSettings;

namespace {

/// The library's pixels are red, green, blue and alpha, with colour premultiplied.
constexpr QImage::Format PixelFormat = QImage::Format_RGBA8888_Premultiplied;

cv::Mat MatrixOf(const QImage& image) {
  QImage pixels = image.convertToFormat(PixelFormat);
  return cv::Mat(pixels.height(), pixels.width(), CV_8UC4, pixels.bits(),
                 static_cast<size_t>(pixels.bytesPerLine()))
      .clone();
}

QImage ImageOf(const cv::Mat& matrix) {
  if (matrix.empty()) {
    return {};
  }
  return QImage(matrix.data, matrix.cols, matrix.rows, static_cast<int>(matrix.step), PixelFormat)
      .copy();
}

SessionSettings Settings() {
  SessionSettings settings;
  settings.threadCount = std::max(1U, std::thread::hardware_concurrency());
  settings.previewBox = cv::Size(250, 250);
  return settings;
}

/// Where captures are missing in between there are several parts; this host shows the first one.
QImage FirstPartOf(const std::optional<SessionResult>& result) {
  if (!result) {
    return {};
  }
  const auto& picture = *result->parts.front();
  return ImageOf(picture.Area({{0, 0}, picture.Size()}));
}

}  // namespace

CaptureRun::CaptureRun(QObject* parent) : QObject(parent), session(Settings()) {}

CaptureRun::~CaptureRun() {
  cancel();
  if (worker.joinable()) {
    worker.join();
  }
}

QString CaptureRun::add(const QImage& grab) {
  const CaptureOutcome outcome = session.Add(MatrixOf(grab));
  switch (outcome.state) {
    case CaptureOutcome::State::TooFast:
      return "Too fast: scroll back a little";
    case CaptureOutcome::State::Doubtful:
      return "In doubt: many places look alike";
    case CaptureOutcome::State::Unusable:
      return QString::fromStdString("The capture " + outcome.reason);
    default:
      return {};
  }
}

QImage CaptureRun::preview() const { return ImageOf(session.Preview()); }

void CaptureRun::stitch() {
  worker = std::thread([this] { stitchOnWorker(); });
}

void CaptureRun::cancel() { cancelled = true; }

void CaptureRun::stitchOnWorker() {
  QImage image;
  try {
    image = FirstPartOf(session.Stitch(this));
  } catch (const std::exception& error) {  // on its way out of the thread it would end the process
    qWarning("%s", error.what());
  }
  if (image.isNull()) {
    emit stopped();
  } else {
    emit stitched(image);
  }
}

bool CaptureRun::ProgressCallback(int progress) {
  emit progressed(progress);
  return !cancelled;
}

void CaptureRun::StitchingComplete(bool /*success*/) {}

bool CaptureRun::StitchingError(StitcherErrorCodes /*code*/, bool /*fatal*/) { return false; }
