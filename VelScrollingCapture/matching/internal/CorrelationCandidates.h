#pragma once

#include <vector>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/core/ScrollOrientation.h>

namespace ScrollingCapture {

/// Motions at which two grey captures (CV_8UC1) correlate: the highest peaks of the surface of
/// their phase correlation (C. D. Kuglin and D. C. Hines, "The phase correlation image alignment
/// method", 1975), found on reduced captures and then refined to whole pixels.
///
/// Where content moved along one axis, as it mostly does, its peak may be lost among the many of
/// the whole surface, so both axes have peaks of their own.
std::vector<cv::Point> CorrelationCandidates(const cv::Mat& earlier, const cv::Mat& later,
                                             ScrollOrientation orientation);

}  // namespace ScrollingCapture
