#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/core/Place.h>
#include <VelScrollingCapture/core/Translation.h>
#include <VelScrollingCapture/session/Picture.h>

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
  /// How far the content moved since the capture that was added before; zero for the first one.
  Translation translation;

  /// Where its first pixel lies in the picture.
  Place place;

  /// Whether it was left out of the picture since it did not move.
  bool leftOut = false;
};

/// What came of a stitch.
struct SessionResult {
  std::shared_ptr<const Picture> picture;

  /// One element for each capture that was added, in that order.
  std::vector<CaptureInPicture> captures;

  /// Nothing when none were looked for or found.
  std::optional<FixedBorders> borders;
};

}  // namespace ScrollingCapture
