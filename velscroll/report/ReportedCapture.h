#pragma once

#include <optional>
#include <string>
#include <vector>

#include <velscroll/report/Overlap.h>

#include <VelScrollingCapture/core/IImageProvider.h>
#include <VelScrollingCapture/core/Place.h>
#include <VelScrollingCapture/core/Translation.h>
#include <VelScrollingCapture/session/SessionResult.h>

namespace ScrollingCapture::Program {

/// A capture file that was read.
struct CaptureFile {
  std::string path;
  bool repeated;  ///< shows the same as the last one that was kept, and was dropped
};

/// What has become of one capture file.
struct ReportedCapture {
  enum State {
    Kept,      ///< it is part of the stitched image
    Repeated,  ///< it shows the same as the one before, and was dropped
    LeftOut,   ///< it differs from the one before but has not moved, and the stitcher left it out
  };

  std::string file;
  State state = Kept;
  Place place;
  Translation translation;  ///< from the file before; zero for a repeat and for the first file
  std::optional<Overlap> overlap;  ///< with the last capture that was not a repeat, if there is one
};

/// Puts together what is known of every file after a stitch.
/// @param files    the files in the order they were read; the first one is no repeat
/// @param captures the captures that were not repeats, as the stitch has left them
/// @param placed   where those have gone
std::vector<ReportedCapture> DescribeCaptures(const std::vector<CaptureFile>& files,
                                              IImageProvider& captures,
                                              const std::vector<CaptureInPicture>& placed);

/// One line for each pair of captures whose overlap does not agree.
std::vector<std::string> WarningsAbout(const std::vector<ReportedCapture>& captures);

}  // namespace ScrollingCapture::Program
