#pragma once

#include <cstdint>
#include <map>
#include <vector>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/mosaic/internal/CaptureLayout.h>
#include <VelScrollingCapture/mosaic/internal/CaptureSource.h>

namespace ScrollingCapture {

/// Cells of the picture in which captures disagree, by row of cells; 1 for each such cell.
using DisputedCells = std::map<int, std::vector<std::uint8_t>>;

/// Where the captures of a layout show the same.
struct Agreement {
  /// For each capture the part of the picture, in rectangles, that no capture before it shows.
  std::vector<std::vector<cv::Rect>> firstShown;
  DisputedCells disputed;
};

/// For each capture the part of the picture, in rectangles, that no capture after it shows.
std::vector<std::vector<cv::Rect>> LastShown(const CaptureLayout& layout);

Agreement FindAgreement(const CaptureSource& source, const CaptureLayout& layout);

}  // namespace ScrollingCapture
