#pragma once

#include <opencv2/core.hpp>

#include <VelScrollingCapture/core/Export.h>
#include <VelScrollingCapture/core/IImageProvider.h>

namespace ScrollingCapture {

/// A capture repeats the one before it from this similarity on; see Utilities::CalculateSimilarity.
constexpr float RepeatSimilarity = 0.9999F;

/// Whether `capture` shows the same as the last capture of `captures`, so that keeping it would add
/// nothing. False for the first capture.
///
/// Throws cv::Exception when the two cannot be compared (different sizes, an empty capture).
VEL_EXPORT bool RepeatsLastCapture(IImageProvider& captures, const cv::Mat& capture);

}  // namespace ScrollingCapture
