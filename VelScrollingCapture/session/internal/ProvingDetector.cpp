#include <utility>

#include <VelScrollingCapture/matching/CapturePlacer.h>
#include <VelScrollingCapture/session/internal/ProvingDetector.h>

namespace ScrollingCapture {

ProvingDetector::ProvingDetector(std::shared_ptr<ITranslationDetector> detector,
                                 const MatchingSettings& settings)
    : detector(std::move(detector)), settings(settings) {}

void ProvingDetector::Prescribe(std::size_t capture, const Translation& motion) {
  prescribed[capture] = motion;
}

Translation ProvingDetector::DetectTranslation(const cv::Mat& previous, const cv::Mat& current) {
  return detector->DetectTranslation(previous, current);
}

std::vector<Translation> ProvingDetector::DetectTranslation(IImageProvider& images,
                                                            IStitcherListener* listener,
                                                            int progressStart, int progressEnd) {
  joins.clear();
  std::vector<Translation> translations =
      detector->DetectTranslation(images, listener, progressStart, progressEnd);
  for (const auto& [capture, motion] : prescribed) {
    if (capture <= translations.size()) {
      translations[capture - 1] = motion;
    }
  }
  CapturePlacer placer(images, settings);
  for (std::size_t i = 0; i <= translations.size() && !translations.empty(); ++i) {
    if (listener != nullptr && !listener->ProgressCallback(progressEnd)) {
      listener->StitchingError(IStitcherListener::Cancelled, false);
      return {};
    }
    const PreparedCapture prepared(*images.GetImageAt(i));
    if (i == 0) {
      placer.Place(i, prepared);
    } else {
      joins.push_back(placer.PlaceAt(i, prepared, translations[i - 1]).join);
    }
  }
  return translations;
}

Translation ProvingDetector::DetectTranslationWithAlternative(const cv::Mat& previous,
                                                              const cv::Mat& current,
                                                              Translation& alternative) {
  return detector->DetectTranslationWithAlternative(previous, current, alternative);
}

}  // namespace ScrollingCapture
