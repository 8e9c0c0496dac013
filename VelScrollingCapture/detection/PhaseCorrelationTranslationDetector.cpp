#include <iostream>

#include <opencv2/imgproc.hpp>

#include <VelScrollingCapture/detection/PhaseCorrelationTranslationDetector.h>
#include <VelScrollingCapture/detection/internal/SequenceDetection.h>

namespace ScrollingCapture {
namespace {

/// A second candidate counts only above this share of the highest surface value.
constexpr double AlternativeThreshold = 0.5;

bool LooksForRows(ScrollOrientation orientation) {
  return orientation == ScrollOrientation::Vertical || orientation == ScrollOrientation::Both;
}

bool LooksForColumns(ScrollOrientation orientation) {
  return orientation == ScrollOrientation::Horizontal || orientation == ScrollOrientation::Both;
}

cv::Mat GreyOf(const cv::Mat& capture) {
  cv::Mat grey;
  cv::cvtColor(capture, grey, cv::COLOR_RGBA2GRAY);
  return grey;
}

/// Twice the length where motion is looked for, so that both signs stay distinguishable.
int TransformLength(int length, bool looksForMotion) {
  return cv::getOptimalDFTSize(looksForMotion ? 2 * length : length);
}

/// Reduces every real and every imaginary component to -1, 0 or 1, in place. Dividing by the
/// absolute value gives the same, but makes 0 / 0 a NaN.
void ReduceToSigns(cv::Mat& spectrum) {
  const int components = spectrum.cols * spectrum.channels();
  for (int row = 0; row < spectrum.rows; ++row) {
    auto* const values = spectrum.ptr<float>(row);
    for (int i = 0; i < components; ++i) {
      values[i] = static_cast<float>(values[i] > 0.0F) - static_cast<float>(values[i] < 0.0F);
    }
  }
}

/// The offset that a peak stands for in a dimension of the given length.
int OffsetOfPeak(int peak, int length) { return peak < length / 2 ? -peak : length - peak; }

}  // namespace

PhaseCorrelationTranslationDetector::PhaseCorrelationTranslationDetector(
    ScrollOrientation orientation, bool expectConsistentTranslations, unsigned int threadCount)
    : orientation(orientation),
      expectConsistentTranslations(expectConsistentTranslations),
      threadCount(threadCount) {}

Translation PhaseCorrelationTranslationDetector::DetectTranslation(const cv::Mat& first,
                                                                   const cv::Mat& second) {
  cv::Size dftSize;
  const cv::Mat surface = CalculateCorrelationMatrix(first, second, dftSize);
  if (surface.empty()) {
    std::cerr << "Failed to create correlation matrix." << std::endl;
    return {};
  }
  int peak[2] = {};
  cv::minMaxIdx(surface, nullptr, nullptr, nullptr, peak);
  return ConvertFrequencyCoordinatesToTranslation(peak, dftSize);
}

Translation PhaseCorrelationTranslationDetector::DetectTranslationWithAlternative(
    const cv::Mat& first, const cv::Mat& second, Translation& alternative) {
  cv::Size dftSize;
  cv::Mat surface = CalculateCorrelationMatrix(first, second, dftSize);
  if (surface.empty()) {
    std::cerr << "Failed to create correlation matrix." << std::endl;
    return {};
  }
  double highest = 0;
  int peak[2] = {};
  cv::minMaxIdx(surface, nullptr, &highest, nullptr, peak);
  const Translation best = ConvertFrequencyCoordinatesToTranslation(peak, dftSize);

  // Only the peak itself is cleared, so the second-highest value may be its neighbour.
  surface.at<float>(peak[0], peak[1]) = 0.0F;
  double secondHighest = 0;
  cv::minMaxIdx(surface, nullptr, &secondHighest, nullptr, peak);
  alternative = secondHighest > AlternativeThreshold * highest
                    ? ConvertFrequencyCoordinatesToTranslation(peak, dftSize)
                    : best;
  return best;
}

std::vector<Translation> PhaseCorrelationTranslationDetector::DetectTranslation(
    IImageProvider& images, IStitcherListener* listener, int progressStart, int progressEnd) {
  return SequenceDetection(*this, images, listener,
                           {expectConsistentTranslations, threadCount, progressStart, progressEnd})
      .Run();
}

cv::Mat PhaseCorrelationTranslationDetector::CalculateCorrelationMatrix(const cv::Mat& first,
                                                                        const cv::Mat& second,
                                                                        cv::Size& dftSize) const {
  cv::Mat firstGrey = GreyOf(first);
  cv::Mat secondGrey = GreyOf(second);
  cv::Mat firstSpectrum;
  cv::Mat secondSpectrum;
  cv::Size firstSize;
  cv::Size secondSize;
  if (!PerformDFT(firstGrey, firstSpectrum, firstSize) ||
      !PerformDFT(secondGrey, secondSpectrum, secondSize)) {
    std::cerr << "Error: Failed to perform DFT." << std::endl;
    return {};
  }
  firstGrey.release();
  secondGrey.release();
  cv::Mat product;
  cv::mulSpectrums(firstSpectrum, secondSpectrum, product, 0, true);
  firstSpectrum.release();
  secondSpectrum.release();
  ReduceToSigns(product);

  cv::Mat surface;
  if (!PerformIDFT(product, surface)) {
    std::cerr << "Error: Failed to perform IDFT." << std::endl;
    return {};
  }
  dftSize = firstSize;
  return surface;
}

bool PhaseCorrelationTranslationDetector::PerformDFT(const cv::Mat& source, cv::Mat& spectrum,
                                                     cv::Size& dftSize) const {
  dftSize = cv::Size(TransformLength(source.cols, LooksForColumns(orientation)),
                     TransformLength(source.rows, LooksForRows(orientation)));
  cv::Mat enlarged(dftSize, CV_32FC1, cv::Scalar(0));
  const int top = (dftSize.height - source.rows) / 2;
  const int left = (dftSize.width - source.cols) / 2;
  // A constant matrix is an output of fixed type: copyTo then converts into its memory.
  const cv::Mat centre(enlarged, cv::Range(top, top + source.rows),
                       cv::Range(left, left + source.cols));
  source.copyTo(centre);
  cv::dft(enlarged, enlarged, cv::DFT_COMPLEX_OUTPUT, 0);
  if (enlarged.empty()) {
    std::cerr << "Error: PerformDFT failed." << std::endl;
    return false;
  }
  spectrum = enlarged;
  return true;
}

bool PhaseCorrelationTranslationDetector::PerformIDFT(const cv::Mat& spectrum,
                                                      cv::Mat& surface) const {
  cv::Mat transformed;
  cv::dft(spectrum, transformed, cv::DFT_INVERSE | cv::DFT_REAL_OUTPUT, 0);
  if (transformed.empty()) {
    std::cerr << "Error: PerformIDFT failed." << std::endl;
    return false;
  }
  surface = transformed;
  return true;
}

Translation PhaseCorrelationTranslationDetector::ConvertFrequencyCoordinatesToTranslation(
    const int (&peak)[2], const cv::Size& dftSize) const {
  const int rows = LooksForRows(orientation) ? OffsetOfPeak(peak[0], dftSize.height) : 0;
  const int cols = LooksForColumns(orientation) ? OffsetOfPeak(peak[1], dftSize.width) : 0;
  return {rows, cols};
}

}  // namespace ScrollingCapture
