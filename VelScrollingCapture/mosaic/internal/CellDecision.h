#pragma once

#include <cstdint>
#include <vector>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/mosaic/internal/CaptureLayout.h>
#include <VelScrollingCapture/mosaic/internal/Runs.h>
#include <VelScrollingCapture/mosaic/internal/Suspicion.h>

namespace ScrollingCapture {

/// Up to this suspicion what a capture shows of a pixel counts in full.
inline constexpr float HardlySuspect = 0.25F;

/// From this suspicion on there is no doubt that the pixel is covered.
inline constexpr float SurelyCovered = 0.85F;

/// Rows of a capture that lie in a band of the picture.
struct Strip {
  std::uint32_t capture;
  cv::Mat pixels;
  cv::Rect area;  ///< of the picture
};

/// What one capture has to say about a cell.
struct Testimony {
  std::uint32_t capture = 0;
  int shown = 0;        ///< pixels that it shows uncovered
  float support = 0;    ///< weight of the captures that show the same, over disputed pixels
  float suspicion = 0;  ///< summed over these pixels
};

/// What the captures make of a cell.
struct CellDecision {
  CellOwners owners;
  std::vector<Testimony> testimonies;
  int open = 0;       ///< pixels at which uncovered captures disagree
  int contested = 0;  ///< those of them at which no value has a majority
};

/// Decides a cell pixel by pixel, and takes it from as few captures as possible.
/// @param area  the cell's pixels in the picture
/// @param strips of the captures that may show some of it, in capture order
CellDecision DecideCell(const CaptureLayout& layout, const Suspicion& suspicion,
                        const cv::Rect& area, const std::vector<Strip>& strips);

}  // namespace ScrollingCapture
