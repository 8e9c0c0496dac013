#pragma once

#include <VelScrollingCapture/detection/phase/PhaseCorrelationTranslationDetector.h>

namespace ScrollingCapture::Testing {

/// The detector with its inner operations in reach of tests.
class OpenDetector : public PhaseCorrelationTranslationDetector {
 public:
  explicit OpenDetector(ScrollOrientation orientation)
      : PhaseCorrelationTranslationDetector(orientation, false, 1) {}

  using PhaseCorrelationTranslationDetector::CalculateCorrelationMatrix;
  using PhaseCorrelationTranslationDetector::ConvertFrequencyCoordinatesToTranslation;
  using PhaseCorrelationTranslationDetector::PerformDFT;
  using PhaseCorrelationTranslationDetector::PerformIDFT;
};

}  // namespace ScrollingCapture::Testing
