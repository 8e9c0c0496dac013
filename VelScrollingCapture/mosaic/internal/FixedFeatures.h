#pragma once

#include <cstdint>

#include <opencv2/core.hpp>

namespace ScrollingCapture {

/// How the cell of a covered part looks, and to which side of the window the part belongs.
enum FeatureBits : std::uint8_t {
  Featured = 1,    ///< More than a background that goes on along the scroll direction.
  BelongsLow = 2,  ///< With the lower half of the window, not with the upper one.
  BelongsRight = 4,
  OnBackground = 8,  ///< A background that goes on, and maybe something on it.
};

/// Finds the features of the covered parts of a capture.
///
/// Featured cells close to each other, such as the entries of a list, make one feature, which
/// belongs to the half of the window in which its middle lies. A plain background belongs where
/// most of what is on it does, and goes on when it reaches over more than half of the window. Other
/// cells belong where they are.
/// @param covered    CV_8U, a value a cell, not 0 where the capture is covered
/// @param vertically whether the content moves up or down; sideways otherwise, or as well
/// @return FeatureBits a cell (CV_8U)
cv::Mat FindFixedFeatures(const cv::Mat& pixels, const cv::Mat& covered, bool vertically,
                          bool sideways);

}  // namespace ScrollingCapture
