#pragma once

#include <opencv2/core.hpp>

namespace ScrollingCapture::Program {

/// Multiplies the colours of an image with its alpha, in place, rounded to the nearest value. Files
/// hold straight alpha, captures premultiplied alpha.
/// @param image CV_8UC4 with the alpha last
void Premultiply(cv::Mat& image);

/// Divides the colours of an image by its alpha, in place, rounded to the nearest value; where
/// alpha is 0 the colours become 0. Premultiply gives back exactly what this was given.
/// @param image CV_8UC4 with the alpha last, no colour above its alpha
void Unpremultiply(cv::Mat& image);

/// Whether no pixel is even partly transparent.
/// @param image CV_8UC4 with the alpha last
bool IsOpaque(const cv::Mat& image);

}  // namespace ScrollingCapture::Program
