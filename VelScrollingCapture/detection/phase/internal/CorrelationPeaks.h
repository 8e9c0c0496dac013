#pragma once

#include <limits>

#include <opencv2/core.hpp>

namespace ScrollingCapture {

/// A value of the correlation surface and where it is.
struct Peak {
  double value = -std::numeric_limits<double>::infinity();
  int position[2] = {};  ///< row and column
};

/// Finds the highest value of a surface, and the second-highest one as far as it is strong enough
/// to be an alternative. The surface comes in blocks of rows, in any order. Of equal values the
/// first one in row-major order counts.
class PeakSearch {
 public:
  /// A second-highest value counts only above this share of the highest.
  static constexpr double AlternativeThreshold = 0.5;

  explicit PeakSearch(bool wantsAlternative) : wantsAlternative(wantsAlternative) {}

  /// @param firstRow where the rows are in the surface
  /// @param rows     CV_32FC1; an element may be overwritten
  void Add(int firstRow, cv::Mat& rows);

  /// Whether rows without a value above `bound` may still change the outcome.
  bool MayFindMore(double bound) const;

  const Peak& Highest() const { return highest; }

  /// The second-highest value when that is strong enough, otherwise the highest.
  const Peak& Alternative() const;

 private:
  void Offer(int firstRow, Peak peak);

  bool wantsAlternative;
  Peak highest;
  Peak secondHighest;
};

}  // namespace ScrollingCapture
