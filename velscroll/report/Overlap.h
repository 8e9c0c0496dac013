#pragma once

#include <optional>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/core/Translation.h>

namespace ScrollingCapture::Program {

/// What two captures have in common, if their translation is right.
struct Overlap {
  int rows = 0;     ///< the height of the common part; 0 when the captures lie apart
  int columns = 0;  ///< its width; 0 when the captures lie apart

  /// The correlation coefficient (Pearson's) of the grey levels of both captures in the common
  /// part, where neither is transparent: 1 when they show the same, about 0 when they have nothing
  /// to do with each other. Nothing when there are no such pixels, or both captures are of one
  /// colour there.
  std::optional<double> correlation;

  /// False when the captures lie apart, or what they show in the common part does not agree. The
  /// translation is then not to be trusted.
  bool Agrees() const;
};

/// Compares the captures before and after a translation. The part of a capture that a seam has cut
/// off is transparent and therefore not looked at.
Overlap CompareOverlap(const cv::Mat& previous, const cv::Mat& current,
                       const Translation& translation);

}  // namespace ScrollingCapture::Program
