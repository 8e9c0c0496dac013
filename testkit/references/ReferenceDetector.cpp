#include "ReferenceDetector.h"

#include <opencv2/imgproc.hpp>

namespace ScrollingCapture::Testing {

Translation ReferenceDetector::DetectTranslation(const cv::Mat& first,
                                                 const cv::Mat& second) const {
  cv::Size dftSize;
  const cv::Mat surface = CalculateCorrelationMatrix(first, second, dftSize);
  double highest = 0;
  int peak[2] = {};
  cv::minMaxIdx(surface, nullptr, &highest, nullptr, peak, cv::Mat());
  return ConvertFrequencyCoordinatesToTranslation(peak, dftSize);
}

Translation ReferenceDetector::DetectTranslationWithAlternative(const cv::Mat& first,
                                                                const cv::Mat& second,
                                                                Translation& alternative) const {
  cv::Size dftSize;
  cv::Mat surface = CalculateCorrelationMatrix(first, second, dftSize);
  double firstMax = 0;
  int firstPeak[2] = {};
  cv::minMaxIdx(surface, nullptr, &firstMax, nullptr, firstPeak, cv::Mat());
  const Translation best = ConvertFrequencyCoordinatesToTranslation(firstPeak, dftSize);
  alternative = best;
  surface.at<float>(firstPeak[0], firstPeak[1]) = 0.0F;
  double secondMax = 0;
  int secondPeak[2] = {};
  cv::minMaxIdx(surface, nullptr, &secondMax, nullptr, secondPeak, cv::Mat());
  const Translation candidate = ConvertFrequencyCoordinatesToTranslation(secondPeak, dftSize);
  if (secondMax > 0.5 * firstMax) {
    alternative = candidate;
  }
  return best;
}

cv::Mat ReferenceDetector::CalculateCorrelationMatrix(const cv::Mat& first, const cv::Mat& second,
                                                      cv::Size& dftSize) const {
  cv::Mat firstGrey;
  cv::Mat secondGrey;
  cv::cvtColor(first, firstGrey, cv::COLOR_RGBA2GRAY, 0);
  cv::cvtColor(second, secondGrey, cv::COLOR_RGBA2GRAY, 0);
  cv::Size secondSize;
  cv::Mat firstSpectrum = PerformDFT(firstGrey, dftSize);
  cv::Mat secondSpectrum = PerformDFT(secondGrey, secondSize);
  firstGrey.release();
  secondGrey.release();
  cv::Mat product;
  cv::mulSpectrums(firstSpectrum, secondSpectrum, product, 0, true);
  firstSpectrum.release();
  secondSpectrum.release();
  cv::divide(product, cv::abs(product), product, 1.0, -1);
  // OpenCV 4 divides floating-point zeros into NaN where a zero is wanted.
  cv::patchNaNs(product, 0);
  return PerformIDFT(product);
}

cv::Mat ReferenceDetector::PerformDFT(const cv::Mat& source, cv::Size& dftSize) const {
  const bool twiceTheColumns = orientation == 1 || orientation == 2;
  const bool twiceTheRows = orientation == 0 || orientation == 2;
  dftSize.width = cv::getOptimalDFTSize(twiceTheColumns ? 2 * source.cols : source.cols);
  dftSize.height = cv::getOptimalDFTSize(twiceTheRows ? 2 * source.rows : source.rows);
  cv::Mat enlarged;
  enlarged.create(dftSize, CV_32FC1);
  enlarged = cv::Scalar(0);
  const int top = (dftSize.height - source.rows) / 2;
  const int left = (dftSize.width - source.cols) / 2;
  const cv::Mat centre(enlarged, cv::Range(top, top + source.rows),
                       cv::Range(left, left + source.cols));
  source.copyTo(centre);
  cv::dft(enlarged, enlarged, cv::DFT_COMPLEX_OUTPUT, 0);
  return enlarged;
}

cv::Mat ReferenceDetector::PerformIDFT(const cv::Mat& spectrum) {
  cv::Mat surface;
  cv::dft(spectrum, surface, cv::DFT_INVERSE | cv::DFT_REAL_OUTPUT, 0);
  return surface;
}

Translation ReferenceDetector::ConvertFrequencyCoordinatesToTranslation(
    const int (&peak)[2], const cv::Size& dftSize) const {
  int rows = 0;
  int columns = 0;
  if (orientation == 0 || orientation == 2) {
    rows = peak[0] < dftSize.height / 2 ? -peak[0] : dftSize.height - peak[0];
  }
  if (orientation == 1 || orientation == 2) {
    columns = peak[1] < dftSize.width / 2 ? -peak[1] : dftSize.width - peak[1];
  }
  return {rows, columns};
}

double ReferenceSimilarity(const cv::Mat& first, const cv::Mat& second) {
  cv::Mat firstGrey;
  cv::Mat secondGrey;
  cv::cvtColor(first, firstGrey, cv::COLOR_RGBA2GRAY, 0);
  cv::cvtColor(second, secondGrey, cv::COLOR_RGBA2GRAY, 0);
  cv::Mat difference;
  cv::absdiff(firstGrey, secondGrey, difference);
  const double total = cv::sum(difference)[0];
  const auto rows = static_cast<double>(difference.rows);
  const auto columns = static_cast<double>(difference.cols);
  return total / (columns * -255.0 * rows) + 1.0;
}

}  // namespace ScrollingCapture::Testing
