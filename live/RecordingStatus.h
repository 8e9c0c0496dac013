#pragma once

#include <cstddef>
#include <string>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/core/Place.h>
#include <VelScrollingCapture/core/Translation.h>

namespace ScrollingCapture::Live {

/// How a recording stands.
struct RecordingStatus {
  std::size_t captures = 0;  ///< how many have been kept
  std::size_t waiting = 0;   ///< how many wait to be joined
  cv::Rect seen;             ///< of the picture so far, relative to the first capture, in pixels
  Translation lastStep;      ///< how far the content moved when it last did
  Place place;               ///< of the last capture, relative to the first one that it joins

  /// Whether nothing joins what the window shows to what was seen first: it was scrolled too fast,
  /// and has to go back.
  bool tooFast = false;

  /// Then: where it was last that this was not so, relative to the first capture.
  Place lastJoined;

  /// The same as row and column of the picture so far: there the window was at its top left.
  Place WayBack() const { return {lastJoined.row - seen.y, lastJoined.column - seen.x}; }

  /// How many captures join the others in doubt.
  std::size_t doubtful = 0;

  /// What is in the way of capturing or scrolling just now, in words; mostly empty.
  std::string hindrance;
};

}  // namespace ScrollingCapture::Live
