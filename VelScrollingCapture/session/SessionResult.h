#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/core/Place.h>
#include <VelScrollingCapture/matching/Join.h>
#include <VelScrollingCapture/session/StitchedPicture.h>

namespace ScrollingCapture {

/// The fixed borders of a run of captures.
struct FixedBorders {
  cv::Rect contentBox;  ///< Of a capture: what changes from capture to capture.
  int top = 0;          ///< Rows above the content box.
  int bottom = 0;       ///< Rows below it.
  int left = 0;         ///< Columns left of it.
  int right = 0;        ///< Columns right of it.
};

/// Where a capture has gone.
struct CaptureInPicture {
  /// The part of the result that shows it, from 0 on.
  std::size_t part = 0;

  /// Where its first pixel lies in that part's picture.
  Place place;

  /// How it is joined; its motion is that since the capture that was added before. Means nothing
  /// for the first capture.
  Join join;

  /// The earlier capture that the join was proven against; empty for the first one of a part.
  std::optional<std::size_t> joinedTo;

  /// With phase correlation: whether it was left out of the picture since it did not move.
  bool leftOut = false;
};

/// What came of a stitch.
struct SessionResult {
  /// One picture, or several where captures are missing in between, in the order in which they
  /// begin.
  std::vector<std::shared_ptr<const StitchedPicture>> parts;

  /// One element for each capture that was added, in that order.
  std::vector<CaptureInPicture> captures;

  /// Nothing when none were looked for or found.
  std::optional<FixedBorders> borders;
};

}  // namespace ScrollingCapture
