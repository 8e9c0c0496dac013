#pragma once

#include <opencv2/core.hpp>

namespace ScrollingCapture {

/// Finds regions of cells next to each other that have the same background: the value of more than
/// half of a cell's pixels.
/// @param cells CV_8U, a value a cell: not 0 for those to look at
/// @return the number of each cell's region (CV_32S), from 1 on; 0 for cells that are of none
cv::Mat FindPlainRegions(const cv::Mat& pixels, const cv::Mat& cells);

}  // namespace ScrollingCapture
