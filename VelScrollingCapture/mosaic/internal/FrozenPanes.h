#pragma once

#include <opencv2/core.hpp>

#include <VelScrollingCapture/mosaic/internal/CaptureLayout.h>
#include <VelScrollingCapture/mosaic/internal/CaptureSource.h>

namespace ScrollingCapture {

/// Finds rows at the top of the window that move only sideways, and columns at its left that move
/// only up and down, as a table's headings do.
///
/// They can be told from fixed parts and from content only where captures moved along both axes.
/// @return the panes' width and height; 0 where there is none
cv::Size FindFrozenPanes(const CaptureSource& source, const CaptureLayout& layout);

}  // namespace ScrollingCapture
