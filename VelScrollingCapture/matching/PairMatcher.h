#pragma once

#include <optional>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/core/Export.h>
#include <VelScrollingCapture/core/Translation.h>
#include <VelScrollingCapture/matching/Join.h>
#include <VelScrollingCapture/matching/MatchingSettings.h>

namespace ScrollingCapture {

/// Finds how far the content moved between two captures, proves it on their pixels, and says how
/// sure that is.
///
/// @param previous,current captures of equal size and type, with pixels of 8 bits in 1, 3 or 4
///                         channels; std::invalid_argument is thrown for others
/// @param stepBefore       the motion between the two captures before, where there was one: of
///                         several motions that explain the captures alike it is preferred
VEL_EXPORT Join MatchPair(const cv::Mat& previous, const cv::Mat& current,
                          const MatchingSettings& settings,
                          const std::optional<Translation>& stepBefore = std::nullopt);

}  // namespace ScrollingCapture
