#pragma once

#include <vector>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/core/ScrollOrientation.h>

namespace ScrollingCapture {

/// The motions under which two captures share nothing but rows that are all alike, as between
/// widely spaced paragraphs: the smallest first, none where such rows take less than an eighth of
/// what scrolls. Bars that stand still at either end are left out.
///
/// Columns are looked at only where content moves along no other axis: the blank margins of a page
/// would explain any two captures of it.
/// @param earlier,later pixel keys (CV_32SC1) of captures of equal size
std::vector<cv::Point> MotionsOfBlankOverlap(const cv::Mat& earlier, const cv::Mat& later,
                                             ScrollOrientation orientation);

}  // namespace ScrollingCapture
