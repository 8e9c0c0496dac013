#pragma once

#include <opencv2/core.hpp>

#include <VelScrollingCapture/core/ScrollOrientation.h>
#include <VelScrollingCapture/core/Translation.h>

namespace ScrollingCapture::Testing {

/// The detector written down plainly: the OpenCV calls one after the other over whole matrices.
///
/// It is what the library's bits are held against and what its speed is measured against, so
/// nothing in it is to be made faster.
class ReferenceDetector {
 public:
  explicit ReferenceDetector(ScrollOrientation orientation) : orientation(orientation) {}

  Translation DetectTranslation(const cv::Mat& first, const cv::Mat& second) const;
  Translation DetectTranslationWithAlternative(const cv::Mat& first, const cv::Mat& second,
                                               Translation& alternative) const;

  cv::Mat CalculateCorrelationMatrix(const cv::Mat& first, const cv::Mat& second,
                                     cv::Size& dftSize) const;
  cv::Mat PerformDFT(const cv::Mat& source, cv::Size& dftSize) const;
  static cv::Mat PerformIDFT(const cv::Mat& spectrum);
  Translation ConvertFrequencyCoordinatesToTranslation(const int (&peak)[2],
                                                       const cv::Size& dftSize) const;

 private:
  ScrollOrientation orientation;
};

/// One minus the mean absolute grey difference, over whole grey images.
double ReferenceSimilarity(const cv::Mat& first, const cv::Mat& second);

}  // namespace ScrollingCapture::Testing
