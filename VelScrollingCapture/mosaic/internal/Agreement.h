#pragma once

#include <map>
#include <vector>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/mosaic/internal/AnalysisProgress.h>
#include <VelScrollingCapture/mosaic/internal/CaptureLayout.h>
#include <VelScrollingCapture/mosaic/internal/CaptureSource.h>
#include <VelScrollingCapture/mosaic/internal/Workers.h>

namespace ScrollingCapture {

/// Cells of the picture in which captures disagree: their columns, in order, by row of cells.
using DisputedCells = std::map<int, std::vector<int>>;

/// Where the captures of a layout show the same.
struct Agreement {
  /// For each capture the part of the picture, in rectangles, that no capture before it shows.
  std::vector<std::vector<cv::Rect>> firstShown;
  DisputedCells disputed;
};

/// For each capture the part of the picture, in rectangles, that no capture after it shows.
std::vector<std::vector<cv::Rect>> LastShown(const CaptureLayout& layout);

/// Holds each capture against the one that was the first to show a place: where all agree with that
/// one, they agree with each other.
Agreement FindAgreement(const CaptureSource& source, const CaptureLayout& layout, Workers& workers,
                        const AnalysisProgress& progress);

/// For each capture whether it shows something of a disputed cell.
std::vector<bool> FindDisputedCaptures(const CaptureLayout& layout, const DisputedCells& disputed);

/// The cells of a capture's window (CV_8U) that reach into disputed ones; not 0.
cv::Mat FindDisputedCells(const CaptureLayout& layout, const DisputedCells& disputed,
                          size_t capture);

}  // namespace ScrollingCapture
