#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/core/ScrollOrientation.h>

namespace ScrollingCapture::Program {

/// When a difference between captures counts as content that moved; see BasicBorderDetection.
struct BorderThresholds {
  unsigned int difference;
  unsigned int neighbors;
};

/// What the command line asks for.
struct Arguments {
  std::vector<std::string> captures;  ///< files, folders and globs, as given
  std::string output;
  ScrollOrientation orientation = ScrollOrientation::Both;
  bool expectConsistentTranslations = false;
  unsigned int threadCount = 1;
  bool keepRepeats = false;
  std::optional<BorderThresholds> borders;   ///< nothing: stitch the captures as they are
  std::optional<std::uint64_t> memoryLimit;  ///< bytes of captures to keep in memory
  std::string spillFolder;                   ///< empty: the system's temporary folder
  std::string preview;                       ///< empty: no preview
  cv::Size previewSize;                      ///< the box that the preview fits into
  std::string report;                        ///< empty: no report
  bool quiet = false;
};

/// Reads the command line. Throws BadInput for wrong usage.
/// @return nothing when help or version were asked for; they have then been printed
std::optional<Arguments> ParseArguments(int argc, const char* const* argv);

/// The name of an orientation on the command line and in the report.
std::string NameOf(ScrollOrientation orientation);

}  // namespace ScrollingCapture::Program
