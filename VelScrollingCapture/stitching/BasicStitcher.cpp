#include <cstdint>
#include <utility>

#include <VelScrollingCapture/core/Place.h>
#include <VelScrollingCapture/core/Utilities.h>
#include <VelScrollingCapture/core/internal/Completion.h>
#include <VelScrollingCapture/core/internal/Messages.h>
#include <VelScrollingCapture/core/internal/Truncation.h>
#include <VelScrollingCapture/seams/Layout.h>
#include <VelScrollingCapture/stitching/BasicStitcher.h>

namespace ScrollingCapture {
namespace {

constexpr double DetectionShareOfProgress = 0.9;

void NotifyError(IStitcherListener* listener, int code) {
  if (listener != nullptr) {
    listener->StitchingError(static_cast<IStitcherListener::StitcherErrorCodes>(code), false);
  }
}

/// The rows of the result that a capture of `size` covers at `place`.
cv::Range RowsOf(const Place& place, const cv::Size& size) {
  return {place.row, place.row + size.height};
}

/// The columns of the result that a capture of `size` covers at `place`.
cv::Range ColumnsOf(const Place& place, const cv::Size& size) {
  return {place.column, place.column + size.width};
}

/// Wide enough for every progress range.
std::int64_t Distance(int progressStart, int progressEnd) {
  return std::int64_t{progressEnd} - progressStart;
}

/// The end of the detection's progress range. It is not offset by the start: hosts know the values
/// that this gives.
int DetectionEnd(int progressStart, int progressEnd) {
  return TruncateToInt(static_cast<double>(Distance(progressStart, progressEnd)) *
                       DetectionShareOfProgress);
}

int BuildProgress(size_t index, size_t count, int progressStart, int progressEnd) {
  const float step =
      static_cast<float>(Distance(progressStart, progressEnd)) / static_cast<float>(count);
  return TruncateToInt(static_cast<float>(index) * step + static_cast<float>(progressStart));
}

/// The stitch of a single capture. It is fetched first: the listener hears of the end of the work
/// only when there is a result.
bool ShareOnlyCapture(IImageProvider& provider, cv::Mat& result, IStitcherListener* listener,
                      int progressEnd) {
  const cv::Mat capture = *provider.GetImageAt(0);
  if (listener != nullptr && !listener->ProgressCallback(progressEnd)) {
    NotifyError(listener, IStitcherListener::Cancelled);
    return false;
  }
  result = capture;
  return true;
}

}  // namespace

BasicStitcher::BasicStitcher(std::shared_ptr<ITranslationDetector> detector)
    : detector(std::move(detector)) {}

bool BasicStitcher::Stitch(IImageProvider& provider, cv::Mat& result, IStitcherListener* listener,
                           int progressStart, int progressEnd, bool notifyCompletion) {
  return AnnounceCompletion(listener, notifyCompletion, [&] {
    const size_t count = provider.Count();
    if (count == 0) {
      TellError("Error: No images in provider passed to Stitch().");
      NotifyError(listener, IStitcherListener::NoImages);
      return false;
    }
    if (count == 1) {
      return ShareOnlyCapture(provider, result, listener, progressEnd);
    }

    captureSize = std::make_shared<cv::Size>(provider.GetImageAt(0)->size());
    imageType = provider.GetImageAt(0)->type();
    const int middle = DetectionEnd(progressStart, progressEnd);
    translations = detector->DetectTranslation(provider, listener, progressStart, middle);
    if (translations.empty()) {
      TellError("Error: Failed to detect translations.");
      return false;
    }
    cv::Mat composed;
    if (!BuildResultImage(provider, composed, listener, middle, progressEnd)) {
      TellError("Error: Failed to build the Result image.");
      return false;
    }
    result = composed;
    return true;
  });
}

std::vector<Translation> BasicStitcher::GetTranslations() const { return translations; }

bool BasicStitcher::BuildResultImage(IImageProvider& provider, cv::Mat& result,
                                     IStitcherListener* listener, int progressStart,
                                     int progressEnd) {
  cv::Mat canvas;
  cv::Rect placement;  // of the first capture, which the layout tells as well
  const int code = SizeResultImage(canvas, placement);
  if (code != 0) {
    TellError("Error: Failed to size the resulting image.");
    NotifyError(listener, code);
    return false;
  }

  const cv::Size size = *captureSize;
  const std::vector<Place> places = LayoutOf(size, translations).places;
  const cv::Mat firstBlock(canvas, RowsOf(places[0], size), ColumnsOf(places[0], size));
  provider.GetImageAt(0)->copyTo(firstBlock);
  for (size_t i = 0; i < translations.size(); ++i) {
    const int progress = BuildProgress(i, translations.size(), progressStart, progressEnd);
    if (listener != nullptr && !listener->ProgressCallback(progress)) {
      NotifyError(listener, IStitcherListener::Cancelled);
      return false;
    }
    cv::Mat capture = *provider.GetImageAt(i + 1);
    if (translations[i] != Translation()) {
      Utilities::CropCaptureImage(capture, translations[i], {{}, size});
      Utilities::BlendImages(capture, canvas, RowsOf(places[i + 1], size),
                             ColumnsOf(places[i + 1], size));
    }
  }
  result = canvas;
  return listener == nullptr || listener->ProgressCallback(progressEnd);
}

int BasicStitcher::SizeResultImage(cv::Mat& image, cv::Rect& placement) {
  try {
    cv::Size size;
    if (!CalcResultImage(placement, size)) {
      return IStitcherListener::NoTranslations;
    }
    image = cv::Mat(size, imageType, cv::Scalar(0, 0, 0, 0));
  } catch (const cv::Exception&) {
    return IStitcherListener::ImageProcessingFailed;
  }
  return 0;
}

bool BasicStitcher::CalcResultImage(cv::Rect& placement, cv::Size& size) {
  if (translations.empty()) {
    TellError("Error: No translations in list.");
    return false;
  }
  const Layout layout = LayoutOf(*captureSize, translations);
  size = layout.size;
  const Place& first = layout.places.front();
  placement = cv::Rect({first.row, first.column}, *captureSize);
  return true;
}

void BasicStitcher::CropSourceImage(cv::Mat& image, int index, const cv::Rect& placement) {
  Utilities::CropCaptureImage(image, translations[static_cast<size_t>(index)], placement);
}

}  // namespace ScrollingCapture
