#pragma once

#include <memory>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/core/ScrollOrientation.h>
#include <VelScrollingCapture/core/Translation.h>
#include <VelScrollingCapture/detection/phase/internal/CorrelationPeaks.h>

namespace ScrollingCapture {

class PairInSequence;

/// The translation that a peak of the surface stands for.
Translation TranslationOfPeak(const int (&peak)[2], const cv::Size& dftSize,
                              ScrollOrientation orientation);

/// Correlates one pair of captures. A detection makes no more of the surface than it needs.
class PairDetection {
 public:
  /// @param pair where the captures are in a sequence, or null; not owned
  explicit PairDetection(ScrollOrientation orientation, const PairInSequence* pair = nullptr)
      : orientation(orientation), pair(pair) {}

  /// (0, 0) with a message when a transform fails.
  Translation Detect(const cv::Mat& first, const cv::Mat& second) const;

  /// Leaves the alternative as it was when a transform fails.
  Translation DetectWithAlternative(const cv::Mat& first, const cv::Mat& second,
                                    Translation& alternative) const;

  /// The whole surface. Throws FailedTransform.
  cv::Mat Surface(const cv::Mat& first, const cv::Mat& second) const;

 private:
  bool Search(const cv::Mat& first, const cv::Mat& second, PeakSearch& peaks) const;
  std::shared_ptr<const cv::Mat> Correlate(const cv::Mat& firstGrey,
                                           const cv::Mat& secondGrey) const;
  cv::Size SizeOfTransform(const cv::Mat& image) const;
  bool CanGoByColumns(const cv::Mat& first, const cv::Mat& second) const;

  const ScrollOrientation orientation;
  const PairInSequence* const pair;
};

}  // namespace ScrollingCapture
