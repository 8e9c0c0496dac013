#pragma once

#include <cstdint>
#include <vector>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/matching/internal/Anchors.h>
#include <VelScrollingCapture/matching/internal/Vectors.h>

namespace ScrollingCapture {

/// The patches of a capture whose hash ends in `zeroBits` zero bits and that differ from their
/// neighbours to the left and above, in any order. The colour of fully transparent pixels does not
/// count.
std::vector<Anchor> SelectPatches(const cv::Mat& capture, int zeroBits, Vectors vectors);

}  // namespace ScrollingCapture
