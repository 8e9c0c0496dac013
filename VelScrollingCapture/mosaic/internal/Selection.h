#pragma once

#include <vector>

#include <VelScrollingCapture/mosaic/internal/Agreement.h>
#include <VelScrollingCapture/mosaic/internal/AnalysisProgress.h>
#include <VelScrollingCapture/mosaic/internal/CaptureLayout.h>
#include <VelScrollingCapture/mosaic/internal/CaptureSource.h>
#include <VelScrollingCapture/mosaic/internal/Runs.h>
#include <VelScrollingCapture/mosaic/internal/Suspicion.h>
#include <VelScrollingCapture/mosaic/internal/Workers.h>

namespace ScrollingCapture {

/// Decides which capture shows each pixel of the disputed cells.
/// @return where that is not the first capture that shows the pixel, by rows and columns
std::vector<Run> SelectCaptures(const CaptureSource& source, const CaptureLayout& layout,
                                const DisputedCells& disputed, const Suspicion& suspicion,
                                Workers& workers, const AnalysisProgress& progress);

}  // namespace ScrollingCapture
