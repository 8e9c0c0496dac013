#pragma once

#include <vector>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/core/Export.h>
#include <VelScrollingCapture/core/Place.h>
#include <VelScrollingCapture/core/Translation.h>

namespace ScrollingCapture {

/// Where the captures of a stitch lie in its result. A value: any thread may read one.
struct Layout {
  cv::Size size;              ///< Of the result, in pixels.
  std::vector<Place> places;  ///< Of every capture in the result, in capture order.
};

/// Lays captures out: each lies at the place of the one before it minus their translation, and all
/// of them inside the result.
///
/// The result grows by a whole step as soon as a capture passes its end, not only by what sticks
/// out. After steady scrolling it is as large as the captures reach; after scrolling back and forth
/// it may be larger.
///
/// Throws cv::Exception when an int cannot hold the number of the result's rows or columns.
/// @param captureSize  the size of every capture in pixels
/// @param translations from every capture to the next: one fewer than there are captures
VEL_EXPORT Layout LayoutOf(const cv::Size& captureSize,
                           const std::vector<Translation>& translations);

}  // namespace ScrollingCapture
