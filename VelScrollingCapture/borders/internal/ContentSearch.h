#pragma once

#include <optional>

#include <opencv2/core.hpp>

namespace ScrollingCapture {

/// Finds content in the rows of a difference image: pixels above one threshold with more neighbours
/// above it than another threshold tells.
///
/// An image with fewer than two rows or columns has no neighbours to count. There every pixel above
/// the difference threshold is found, for the caller to decide on.
class ContentSearch {
 public:
  /// @param difference absolute grey-level differences, CV_8UC1; must outlive the search
  ContentSearch(const cv::Mat& difference, unsigned int differenceThreshold,
                unsigned int neighborThreshold);

  /// The first content column of `row` within `columns`, which must lie inside the image.
  std::optional<int> First(int row, const cv::Range& columns) const;

  /// The last one.
  std::optional<int> Last(int row, const cv::Range& columns) const;

 private:
  const cv::Mat& difference;
  uchar threshold;
  uchar changedAround;  ///< how many pixels of the 3 x 3 around content changed, less one
};

}  // namespace ScrollingCapture
