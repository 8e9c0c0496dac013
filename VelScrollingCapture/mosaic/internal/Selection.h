#pragma once

#include <cstdint>
#include <map>
#include <vector>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/mosaic/internal/Agreement.h>
#include <VelScrollingCapture/mosaic/internal/CaptureLayout.h>
#include <VelScrollingCapture/mosaic/internal/CaptureSource.h>
#include <VelScrollingCapture/mosaic/internal/Suspicion.h>

namespace ScrollingCapture {

/// A stretch of a picture row that is taken from one capture.
struct Run {
  int row;
  int column;
  int length;
  std::uint32_t capture;
};

/// Which capture shows each pixel of the disputed cells.
std::vector<Run> SelectCaptures(const CaptureSource& source, const CaptureLayout& layout,
                                const DisputedCells& disputed, const Suspicion& suspicion);

}  // namespace ScrollingCapture
