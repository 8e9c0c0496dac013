#include <cstdint>
#include <utility>

#include <VelScrollingCapture/core/Utilities.h>
#include <VelScrollingCapture/core/internal/Completion.h>
#include <VelScrollingCapture/core/internal/Messages.h>
#include <VelScrollingCapture/core/internal/Narrowing.h>
#include <VelScrollingCapture/core/internal/Truncation.h>
#include <VelScrollingCapture/stitching/BasicStitcher.h>

namespace ScrollingCapture {
namespace {

constexpr double DetectionShareOfProgress = 0.9;

void NotifyError(IStitcherListener* listener, int code) {
  if (listener != nullptr) {
    listener->StitchingError(static_cast<IStitcherListener::StitcherErrorCodes>(code), false);
  }
}

/// The rows that a placement covers in the result; a placement's x is a row.
cv::Range RowsOf(const cv::Rect& placement) {
  return {placement.x, placement.x + placement.height};
}

/// The columns that a placement covers in the result; a placement's y is a column.
cv::Range ColumnsOf(const cv::Rect& placement) {
  return {placement.y, placement.y + placement.width};
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

/// How far the captures reach along one axis, as they are placed one after another. Wider than any
/// result can be, since a detector may report any motion.
class AxisExtent {
 public:
  explicit AxisExtent(int captureLength) : end(captureLength), maximumEnd(captureLength) {}

  void Move(int translation) {
    if (translation < 0) {
      MoveForward(-std::int64_t{translation});
    } else {
      MoveBack(translation);
    }
  }

  /// Both throw cv::Exception when the extent is longer than any matrix.
  int Length() const { return Narrowed(maximumEnd - minimumStart); }
  int FirstCaptureOffset() const { return Narrowed(firstCaptureOffset); }

 private:
  void MoveForward(std::int64_t step) {
    start += step;
    end += step;
    if (end > maximumEnd) {
      maximumEnd += step;
    }
  }

  void MoveBack(std::int64_t step) {
    start -= step;
    end -= step;
    if (start < minimumStart) {
      minimumStart -= step;
      firstCaptureOffset += step;
    }
  }

  std::int64_t start = 0;
  std::int64_t end;
  std::int64_t maximumEnd;
  std::int64_t minimumStart = 0;
  std::int64_t firstCaptureOffset = 0;
};

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
  cv::Rect placement;
  const int code = SizeResultImage(canvas, placement);
  if (code != 0) {
    TellError("Error: Failed to size the resulting image.");
    NotifyError(listener, code);
    return false;
  }

  const cv::Mat firstBlock(canvas, RowsOf(placement), ColumnsOf(placement));
  provider.GetImageAt(0)->copyTo(firstBlock);
  for (size_t i = 0; i < translations.size(); ++i) {
    const int progress = BuildProgress(i, translations.size(), progressStart, progressEnd);
    if (listener != nullptr && !listener->ProgressCallback(progress)) {
      NotifyError(listener, IStitcherListener::Cancelled);
      return false;
    }
    const Translation& translation = translations[i];
    placement.x -= translation.GetRows();
    placement.y -= translation.GetCols();
    cv::Mat capture = *provider.GetImageAt(i + 1);
    if (translation != Translation()) {
      Utilities::CropCaptureImage(capture, translation, placement);
      Utilities::BlendImages(capture, canvas, RowsOf(placement), ColumnsOf(placement));
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
  AxisExtent rows(captureSize->height);
  AxisExtent columns(captureSize->width);
  for (const Translation& translation : translations) {
    rows.Move(translation.GetRows());
    columns.Move(translation.GetCols());
  }
  size = cv::Size(columns.Length(), rows.Length());
  placement = cv::Rect(rows.FirstCaptureOffset(), columns.FirstCaptureOffset(), captureSize->width,
                       captureSize->height);
  return true;
}

void BasicStitcher::CropSourceImage(cv::Mat& image, int index, const cv::Rect& placement) {
  Utilities::CropCaptureImage(image, translations[static_cast<size_t>(index)], placement);
}

}  // namespace ScrollingCapture
