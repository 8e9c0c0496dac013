#pragma once

#include <vector>

#include <opencv2/core.hpp>

namespace ScrollingCapture {

/// The distances after which the content of a capture (8 bits, any channels) roughly repeats
/// itself, as the rows of a table and the columns of a grid do: at most one down and one across,
/// the shortest. It looks at a few lines of pixels only.
std::vector<cv::Point> PeriodsOf(const cv::Mat& capture);

/// Whether a capture (8 bits, any channels) has the noise that lossy files have: mostly pixels that
/// differ a little from their neighbours. Photos look the same. It looks at a few lines of pixels.
bool MayBeLossy(const cv::Mat& capture);

}  // namespace ScrollingCapture
