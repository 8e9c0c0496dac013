#pragma once

#include <cstddef>

#include <VelScrollingCapture/detection/phase/PhaseCorrelationTranslationDetector.h>
#include <VelScrollingCapture/storage/BasicImageProvider.h>

namespace ScrollingCapture::Testing {

/// Captures of one pixel that carry their index, for detectors that look no further.
inline BasicImageProvider NumberedCaptures(size_t count) {
  BasicImageProvider captures;
  for (size_t index = 0; index < count; ++index) {
    cv::Mat capture(1, 1, CV_8UC4, cv::Scalar::all(static_cast<double>(index)));
    captures.Add(capture);
  }
  return captures;
}

/// The index that a numbered capture carries.
inline size_t NumberOf(const cv::Mat& capture) { return capture.at<cv::Vec4b>(0, 0)[0]; }

/// Leaves the pairs of numbered captures to a function of the pair's index.
template <typename DetectPair>
class NumberedPairsDetector : public PhaseCorrelationTranslationDetector {
 public:
  NumberedPairsDetector(unsigned int threadCount, DetectPair detectPair)
      : PhaseCorrelationTranslationDetector(Both, false, threadCount), detectPair(detectPair) {}

  using PhaseCorrelationTranslationDetector::DetectTranslation;

  Translation DetectTranslation(const cv::Mat& first, const cv::Mat& /*second*/) override {
    return detectPair(NumberOf(first));
  }

 private:
  DetectPair detectPair;
};

}  // namespace ScrollingCapture::Testing
