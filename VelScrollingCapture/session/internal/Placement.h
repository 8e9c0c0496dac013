#pragma once

#include <vector>

#include <VelScrollingCapture/core/Place.h>
#include <VelScrollingCapture/core/Translation.h>

namespace ScrollingCapture {

/// The places that the basic stitcher gives to captures with these translations between them: one
/// more than there are translations.
std::vector<Place> PlacesOf(const std::vector<Translation>& translations);

}  // namespace ScrollingCapture
