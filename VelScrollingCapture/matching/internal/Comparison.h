#pragma once

#include <cstdint>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/matching/internal/Vectors.h>

namespace ScrollingCapture {

/// Captures are compared in cells of this many pixels a side.
constexpr int CellSide = 8;

/// How many cells cover a capture, incomplete ones at its right and lower edge included.
cv::Size CellsOf(const cv::Size& capture);

/// The part of the later capture that also the earlier one shows, when the content moved so.
cv::Rect OverlapOf(const cv::Size& capture, const cv::Point& motion);

/// What two captures show of the same places.
struct Comparison {
  cv::Rect overlap;        ///< in the later capture
  cv::Mat unequal;         ///< how many pixels of each of its cells disagree (CV_8UC1); 0 outside
  std::int64_t equal = 0;  ///< how many pixels agree

  std::int64_t Compared() const { return std::int64_t{overlap.width} * overlap.height; }
};

/// Compares every pixel that both captures show when the content moved so.
/// @param earlier,later pixel keys (CV_32SC1) of captures of equal size
/// @param content where in the captures content moves; nothing else is compared
Comparison Compare(const cv::Mat& earlier, const cv::Mat& later, const cv::Point& motion,
                   const cv::Rect& content, Vectors vectors);

/// The same for all of the captures.
Comparison Compare(const cv::Mat& earlier, const cv::Mat& later, const cv::Point& motion,
                   Vectors vectors);

/// How far two captures agree wherever both show the same place.
struct Agreement {
  std::int64_t compared = 0;  ///< pixels
  std::int64_t equal = 0;
};

/// @param seen a comparison of some of the content: only the rest is looked at
Agreement AgreementOf(const cv::Mat& earlier, const cv::Mat& later, const cv::Point& motion,
                      const Comparison& seen);

}  // namespace ScrollingCapture
