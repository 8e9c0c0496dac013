#pragma once

#include <cstddef>
#include <vector>

#include <opencv2/core.hpp>

namespace ScrollingCapture {

/// Sums of values in squares around the cells of one row.
class SurroundingSums {
 public:
  /// @param radii of the squares, from small to large
  explicit SurroundingSums(std::vector<int> radii);

  /// Sums up around some cells of a row. Outside of `values` (CV_32F) there is nothing.
  void Find(const cv::Mat& values, int row, const cv::Range& columns);

  /// The sums in the squares of one radius, for one cell after the other.
  const float* Within(size_t radius) const { return sums[radius].data(); }

 private:
  void AddRow(const cv::Mat& values, int row, const cv::Range& columns);
  void SumSideways(int radius, std::vector<float>& ofRadius);

  std::vector<int> radii;
  std::vector<float> ofColumns;  ///< the largest radius beyond the cells on both sides
  std::vector<float> ofTriples;  ///< of a column and its neighbours
  std::vector<std::vector<float>> sums;
};

}  // namespace ScrollingCapture
