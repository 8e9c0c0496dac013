#pragma once

#include <vector>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/core/Place.h>

namespace ScrollingCapture {

/// Whether no pixel is even partly transparent.
/// @param pixels CV_8UC4 with the alpha last
bool Covers(const cv::Mat& pixels);

/// Whether captures of one size cover a picture without a gap.
/// @param places of the captures in the picture, which none sticks out of
bool Cover(const cv::Size& picture, const cv::Size& capture, std::vector<Place> places);

}  // namespace ScrollingCapture
