#pragma once

#include <cstdint>
#include <vector>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/matching/internal/Anchors.h>
#include <VelScrollingCapture/matching/internal/Vectors.h>

namespace ScrollingCapture {

/// What SelectPatches finds.
struct Selection {
  std::vector<Anchor> anchors;  ///< in any order
  bool hasColouredTransparentPixels = false;
};

/// The patches of a capture whose hash, once spread, begins with `zeroBits` zero bits and that
/// differ from their neighbours to the left and above. The colour of fully transparent pixels does
/// not count.
Selection SelectPatches(const cv::Mat& capture, int zeroBits, Vectors vectors);

}  // namespace ScrollingCapture
