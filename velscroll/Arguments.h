#pragma once

#include <optional>
#include <string>
#include <vector>

#include <VelScrollingCapture/core/ScrollOrientation.h>

namespace ScrollingCapture::Program {

/// What the command line asks for.
struct Arguments {
  std::vector<std::string> captures;  ///< files, folders and globs, as given
  std::string output;
  ScrollOrientation orientation = ScrollOrientation::Both;
  bool expectConsistentTranslations = false;
  unsigned int threadCount = 1;
  bool keepRepeats = false;
  std::string report;  ///< empty: no report
  bool quiet = false;
};

/// Reads the command line. Throws BadInput for wrong usage.
/// @return nothing when help or version were asked for; they have then been printed
std::optional<Arguments> ParseArguments(int argc, const char* const* argv);

/// The name of an orientation on the command line and in the report.
std::string NameOf(ScrollOrientation orientation);

}  // namespace ScrollingCapture::Program
