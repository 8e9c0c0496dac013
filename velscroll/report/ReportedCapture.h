#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/core/Place.h>
#include <VelScrollingCapture/matching/Join.h>
#include <VelScrollingCapture/session/SessionResult.h>

namespace ScrollingCapture::Program {

/// A capture file that was read.
struct CaptureFile {
  std::string path;

  /// When it shows the same as the last one that was kept, and was dropped: how alike both are.
  std::optional<Join> repeat;
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
  std::size_t part = 0;  ///< of the picture, from 0 on
  Place place;           ///< in that part

  /// How it is joined to the files before; nothing for the first one.
  std::optional<Join> join;

  /// Whether captures are missing before this one, so that nothing joins its part to those before.
  bool beginsPart = false;

  /// Whether it was laid by a motion that the pixels contradict.
  bool contradicted = false;
};

/// How alike a capture and the one that it repeats are.
/// @param kept,repeat CV_8UC4, of equal size
Join JoinOfRepeat(const cv::Mat& kept, const cv::Mat& repeat);

/// Puts together what is known of every file after a stitch.
/// @param files  the files in the order they were read; the first one is no repeat
/// @param placed where those have gone that are no repeats
std::vector<ReportedCapture> DescribeCaptures(const std::vector<CaptureFile>& files,
                                              const std::vector<CaptureInPicture>& placed);

/// One line for each join that is not sure.
std::vector<std::string> WarningsAbout(const std::vector<ReportedCapture>& captures);

}  // namespace ScrollingCapture::Program
