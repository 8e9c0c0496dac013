#pragma once

#include <opencv2/core.hpp>

#include <VelScrollingCapture/core/Place.h>

namespace ScrollingCapture::Live {

/// The part of the content that a capture of some size shows at a place, in pixels.
inline cv::Rect AreaAt(const Place& place, const cv::Size& size) {
  return {{place.column, place.row}, size};
}

}  // namespace ScrollingCapture::Live
