#pragma once

#include <vector>

#include <VelScrollingCapture/core/Translation.h>

namespace ScrollingCapture::Program {

/// The place of a capture's first pixel in the stitched image.
struct Place {
  int row;
  int column;
};

/// The places that the basic stitcher gives to captures with these translations between them: one
/// more than there are translations.
std::vector<Place> PlacesOf(const std::vector<Translation>& translations);

}  // namespace ScrollingCapture::Program
