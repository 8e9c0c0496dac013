#pragma once

#include <limits>

#include <opencv2/core.hpp>

namespace ScrollingCapture {

/// A value of the correlation surface and where it is.
struct Peak {
  double value = -std::numeric_limits<double>::infinity();
  int position[2] = {};  ///< row and column
};

/// Finds the two highest values of a surface that comes in blocks of rows, from the top down. Of
/// equal values the first in row-major order comes first.
class PeakSearch {
 public:
  /// @param firstRow where the rows are in the surface
  /// @param rows     CV_32FC1; an element of it is overwritten
  void Add(int firstRow, cv::Mat& rows);

  const Peak& Highest() const { return highest; }
  const Peak& SecondHighest() const { return secondHighest; }

 private:
  void Offer(int firstRow, Peak peak);

  Peak highest;
  Peak secondHighest;
};

}  // namespace ScrollingCapture
