#pragma once

#include <optional>
#include <string>
#include <vector>

#include <velscroll/input/CaptureSequence.h>
#include <velscroll/report/Overlap.h>
#include <velscroll/report/Placement.h>

#include <VelScrollingCapture/core/IImageProvider.h>
#include <VelScrollingCapture/core/Translation.h>

namespace ScrollingCapture::Program {

/// What has become of one capture file.
struct CaptureOutcome {
  enum State {
    Kept,      ///< it is part of the stitched image
    Repeated,  ///< it shows the same as the one before, and was dropped
    LeftOut,   ///< it differs from the one before but has not moved, and the stitcher left it out
  };

  std::string file;
  State state = Kept;
  Place place = {0, 0};
  Translation translation;  ///< from the file before; zero for a repeat and for the first file
  std::optional<Overlap> overlap;  ///< with the last capture that was not a repeat, if there is one
};

/// Puts together what is known of every file after a stitch.
/// @param files        the files in the order they were read
/// @param captures     the captures that were not repeats, as the stitch has left them
/// @param translations between those captures
std::vector<CaptureOutcome> DescribeCaptures(const std::vector<CaptureFile>& files,
                                             IImageProvider& captures,
                                             const std::vector<Translation>& translations);

/// One line for each pair of captures whose overlap does not agree.
std::vector<std::string> WarningsAbout(const std::vector<CaptureOutcome>& outcomes);

}  // namespace ScrollingCapture::Program
