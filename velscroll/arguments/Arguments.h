#pragma once

#include <optional>
#include <string>
#include <vector>

#include <velscroll/output/Outputs.h>
#include <velscroll/terminal/Console.h>

#include <VelScrollingCapture/session/SessionSettings.h>

namespace ScrollingCapture::Program {

/// What the command line asks for.
struct Arguments {
  std::vector<std::string> captures;  ///< files, folders and globs, as given
  std::string joins;                  ///< a report whose motions are taken; empty: none
  bool strict = false;                ///< whether a join that is not sure is a failure
  OutputSettings outputs;
  SessionSettings session;
  Loudness loudness = Loudness::All;
};

/// Reads the command line. Throws BadInput for wrong usage.
/// @return nothing when help or version were asked for; they have then been printed
std::optional<Arguments> ParseArguments(int argc, const char* const* argv);

}  // namespace ScrollingCapture::Program
