#pragma once

#include <opencv2/core.hpp>

namespace ScrollingCapture::Live {

/// Which way a strip goes through a frame.
enum class StripAxis {
  Upright,  ///< as high as the frame
  Level,    ///< as wide as the frame
};

/// The strip in which two frames differ most: an eighth of a large frame, more of a small one. That
/// is mostly enough to see how the content moved along the strip, at a fraction of the time. Every
/// few rows or columns are looked at.
/// @param before,now CV_8UC4 of equal size
/// @return the strip; empty when no difference was met
cv::Rect ChangedStrip(const cv::Mat& before, const cv::Mat& now, StripAxis axis);

}  // namespace ScrollingCapture::Live
