#pragma once

#include <opencv2/core.hpp>

#include <VelScrollingCapture/core/Translation.h>

namespace ScrollingCapture::Testing {

// The seams drawn one line after another with cv::line, with nothing clever: the yardstick for the
// library's cropping and blending. The operations mean what those of Utilities with the same names
// mean.

void ReferenceMakeRowTransparent(cv::Mat& image, const cv::Point& start, bool towardsFirstColumn);
void ReferenceMakeColumnTransparent(cv::Mat& image, const cv::Point& start, bool towardsFirstRow);

/// Both points must lie inside the image.
void ReferenceClipCorner(cv::Mat& image, const cv::Point& first, const cv::Point& second,
                         bool towardsOrigin);

/// The translation must leave an overlap.
void ReferenceCropCaptureImage(cv::Mat& capture, const Translation& translation,
                               const cv::Rect& captureSize);

/// The ranges must fit source and target.
void ReferenceBlendImages(const cv::Mat& source, cv::Mat& target, const cv::Range& targetRows,
                          const cv::Range& targetColumns);

}  // namespace ScrollingCapture::Testing
