#pragma once

#include <opencv2/core.hpp>

namespace ScrollingCapture {

/// Sums up how far the grey levels of two captures of the same size lie apart, pixel by pixel. The
/// grey levels are those of cv::cvtColor, whose exceptions are passed on. Nothing of the size of a
/// capture of whole numbers is allocated.
double SumOfGreyDifferences(const cv::Mat& first, const cv::Mat& second);

}  // namespace ScrollingCapture
