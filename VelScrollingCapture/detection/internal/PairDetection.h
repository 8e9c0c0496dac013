#pragma once

#include <memory>
#include <optional>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/core/ScrollOrientation.h>
#include <VelScrollingCapture/core/Translation.h>
#include <VelScrollingCapture/detection/internal/CorrelationPeaks.h>
#include <VelScrollingCapture/detection/internal/SpectrumColumns.h>

namespace ScrollingCapture {

class SharedSpectra;

/// The translation that a peak of the surface stands for.
Translation TranslationOfPeak(const int (&peak)[2], const cv::Size& dftSize,
                              ScrollOrientation orientation);

/// Correlates one pair of captures, and detects its translation. The surface comes in blocks of
/// rows and is searched as it comes.
class PairDetection {
 public:
  /// @param sharedSpectra the spectra of the sequence that the pairs belong to, or null; not owned
  explicit PairDetection(ScrollOrientation orientation, SharedSpectra* sharedSpectra = nullptr)
      : orientation(orientation), sharedSpectra(sharedSpectra) {}

  Translation Detect(const cv::Mat& first, const cv::Mat& second) const;
  Translation DetectWithAlternative(const cv::Mat& first, const cv::Mat& second,
                                    Translation& alternative) const;

  /// Makes the surface and hands it on. Throws FailedTransform.
  void MakeSurface(const cv::Mat& first, const cv::Mat& second, const TakeRows& take) const;

 private:
  std::optional<PeakSearch> SearchSurface(const cv::Mat& first, const cv::Mat& second) const;
  std::shared_ptr<const cv::Mat> CorrelateColumns(const cv::Mat& firstGrey,
                                                  const cv::Mat& secondGrey,
                                                  const cv::Size& dftSize) const;

  const ScrollOrientation orientation;
  SharedSpectra* const sharedSpectra;
};

}  // namespace ScrollingCapture
