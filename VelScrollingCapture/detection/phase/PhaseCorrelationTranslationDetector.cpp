#include <VelScrollingCapture/core/internal/Messages.h>
#include <VelScrollingCapture/detection/internal/SequenceDetection.h>
#include <VelScrollingCapture/detection/phase/PhaseCorrelationTranslationDetector.h>
#include <VelScrollingCapture/detection/phase/internal/PairDetection.h>
#include <VelScrollingCapture/detection/phase/internal/PairInSequence.h>
#include <VelScrollingCapture/detection/phase/internal/SharedSpectra.h>
#include <VelScrollingCapture/detection/phase/internal/Transforms.h>

namespace ScrollingCapture {

PhaseCorrelationTranslationDetector::PhaseCorrelationTranslationDetector(
    ScrollOrientation orientation, bool expectConsistentTranslations, unsigned int threadCount)
    : orientation(orientation),
      expectConsistentTranslations(expectConsistentTranslations),
      threadCount(threadCount) {}

Translation PhaseCorrelationTranslationDetector::DetectTranslation(const cv::Mat& first,
                                                                   const cv::Mat& second) {
  return PairDetection(orientation, PairInSequence::Of(this)).Detect(first, second);
}

Translation PhaseCorrelationTranslationDetector::DetectTranslationWithAlternative(
    const cv::Mat& first, const cv::Mat& second, Translation& alternative) {
  return PairDetection(orientation, PairInSequence::Of(this))
      .DetectWithAlternative(first, second, alternative);
}

std::vector<Translation> PhaseCorrelationTranslationDetector::DetectTranslation(
    IImageProvider& images, IStitcherListener* listener, int progressStart, int progressEnd) {
  // Every running pair has a spectrum that its successor needs, and so has the last one to end.
  SharedSpectra spectra(static_cast<size_t>(threadCount) + 1);
  const auto detectPair = [&](size_t pair, const cv::Mat& first, const cv::Mat& second,
                              Translation& alternative) {
    const PairInSequence scope(this, spectra, pair);
    return expectConsistentTranslations
               ? DetectTranslationWithAlternative(first, second, alternative)
               : DetectTranslation(first, second);
  };
  const SequenceDetection::Settings settings = {expectConsistentTranslations, threadCount,
                                                progressStart, progressEnd};
  return SequenceDetection(detectPair, images, listener, settings).Run();
}

cv::Mat PhaseCorrelationTranslationDetector::CalculateCorrelationMatrix(const cv::Mat& first,
                                                                        const cv::Mat& second,
                                                                        cv::Size& dftSize) const {
  try {
    cv::Mat surface = PairDetection(orientation).Surface(first, second);
    dftSize = surface.size();
    return surface;
  } catch (const FailedTransform& failure) {
    ReportFailedTransform(failure);
    return {};
  }
}

bool PhaseCorrelationTranslationDetector::PerformDFT(const cv::Mat& source, cv::Mat& spectrum,
                                                     cv::Size& dftSize) const {
  dftSize = TransformSize(source.size(), orientation);
  try {
    spectrum = FullSpectrum(source, dftSize);
    return true;
  } catch (const FailedTransform&) {
    TellError("Error: PerformDFT failed.");
    return false;
  }
}

bool PhaseCorrelationTranslationDetector::PerformIDFT(const cv::Mat& spectrum,
                                                      cv::Mat& surface) const {
  try {
    surface = InverseOfFullSpectrum(spectrum);
    return true;
  } catch (const FailedTransform&) {
    TellError("Error: PerformIDFT failed.");
    return false;
  }
}

Translation PhaseCorrelationTranslationDetector::ConvertFrequencyCoordinatesToTranslation(
    const int (&peak)[2], const cv::Size& dftSize) const {
  return TranslationOfPeak(peak, dftSize, orientation);
}

}  // namespace ScrollingCapture
