#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>

#include <VelScrollingCapture/core/internal/Messages.h>
#include <VelScrollingCapture/core/internal/Truncation.h>
#include <VelScrollingCapture/mosaic/MosaicStitcher.h>
#include <VelScrollingCapture/mosaic/internal/Refusals.h>

namespace ScrollingCapture {
namespace {

constexpr double DetectionShare = 0.9;
constexpr double AnalysisShare = 0.96;
constexpr int BandRows = 512;

/// Progress calls over a range, to a listener that may be missing.
class ProgressRange {
 public:
  ProgressRange(IStitcherListener* listener, int start, int end)
      : listener(listener), start(start), end(end) {}

  int At(double share) const {
    return TruncateToInt(start + (static_cast<double>(end) - start) * share);
  }

  /// False, and the listener has been told so, when it asks to stop.
  bool Report(double share) const {
    if (listener == nullptr || listener->ProgressCallback(At(share))) {
      return true;
    }
    listener->StitchingError(IStitcherListener::Cancelled, false);
    return false;
  }

 private:
  IStitcherListener* listener;
  int start;
  int end;
};

/// Where the captures lie, the first one at (0, 0). Throws PictureTooLarge when an int cannot
/// tell.
std::vector<Place> Accumulate(const std::vector<Translation>& translations) {
  std::vector<Place> places(1);
  std::int64_t row = 0;
  std::int64_t column = 0;
  for (const Translation& translation : translations) {
    row -= translation.GetRows();
    column -= translation.GetCols();
    places.push_back({cv::saturate_cast<int>(row), cv::saturate_cast<int>(column)});
    if (places.back().row != row || places.back().column != column) {
      throw PictureTooLarge("The captures lie further apart than an int can tell.");
    }
  }
  return places;
}

bool Fail(IStitcherListener* listener, IStitcherListener::StitcherErrorCodes code,
          const std::string& message) {
  TellError("Error: " + message);
  if (listener != nullptr) {
    listener->StitchingError(code, false);
  }
  return false;
}

bool RenderAll(const Mosaic& mosaic, cv::Mat& canvas, const ProgressRange& progress) {
  for (int row = 0; row < canvas.rows; row += BandRows) {
    const double rendered = static_cast<double>(row) / canvas.rows;
    if (!progress.Report(AnalysisShare + (1 - AnalysisShare) * rendered)) {
      return false;
    }
    const cv::Rect band(0, row, canvas.cols, std::min(BandRows, canvas.rows - row));
    cv::Mat pixels = canvas(band);
    mosaic.Render(band, pixels);
  }
  return progress.Report(1);
}

/// The analysis; null when the listener asked to stop, or when it has been told why there is none.
std::unique_ptr<Mosaic> Analyse(IImageProvider& provider,
                                const std::vector<Translation>& translations,
                                const MosaicSettings& settings, IStitcherListener* listener,
                                const ProgressRange& progress) {
  try {
    return Mosaic::Analyse(provider, Accumulate(translations), settings, listener,
                           progress.At(DetectionShare), progress.At(AnalysisShare));
  } catch (const UnusableCapture& error) {
    Fail(listener, IStitcherListener::ImageProcessingFailed, error.what());
  } catch (const PictureTooLarge& error) {
    Fail(listener, IStitcherListener::ImageProcessingFailed, error.what());
  }
  return nullptr;
}

/// The canvas; empty when OpenCV cannot make it.
cv::Mat MakeCanvas(const Mosaic& mosaic) {
  try {
    return {mosaic.Size(), mosaic.Type()};
  } catch (const cv::Exception&) {
    return {};
  }
}

bool Compose(IImageProvider& provider, const std::vector<Translation>& translations,
             const MosaicSettings& settings, cv::Mat& result, IStitcherListener* listener,
             const ProgressRange& progress) {
  const auto mosaic = Analyse(provider, translations, settings, listener, progress);
  if (mosaic == nullptr) {
    return false;
  }
  cv::Mat canvas = MakeCanvas(*mosaic);
  if (canvas.empty()) {
    return Fail(listener, IStitcherListener::ImageProcessingFailed,
                "Failed to size the resulting image.");
  }
  if (!RenderAll(*mosaic, canvas, progress)) {
    return false;
  }
  result = canvas;
  return true;
}

}  // namespace

MosaicStitcher::MosaicStitcher(std::shared_ptr<ITranslationDetector> detector,
                               const MosaicSettings& settings)
    : detector(std::move(detector)), settings(settings) {}

bool MosaicStitcher::Stitch(IImageProvider& provider, cv::Mat& result, IStitcherListener* listener,
                            int progressStart, int progressEnd, bool notifyCompletion) {
  const ProgressRange progress(listener, progressStart, progressEnd);
  const size_t count = provider.Count();
  translations.clear();
  bool stitched = false;
  if (count == 0) {
    Fail(listener, IStitcherListener::NoImages, "No images in provider passed to Stitch().");
  } else {
    if (count > 1) {
      translations = detector->DetectTranslation(provider, listener, progressStart,
                                                 progress.At(DetectionShare));
    }
    if (translations.size() + 1 == count) {
      stitched = Compose(provider, translations, settings, result, listener, progress);
    } else {
      TellError("Error: Failed to detect translations.");
    }
  }
  if (listener != nullptr && notifyCompletion) {
    listener->StitchingComplete(stitched);
  }
  return stitched;
}

std::vector<Translation> MosaicStitcher::GetTranslations() const { return translations; }

}  // namespace ScrollingCapture
