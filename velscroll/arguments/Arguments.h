#pragma once

#include <optional>
#include <string>
#include <vector>

#include <velscroll/arguments/ResultArguments.h>

namespace ScrollingCapture::Program {

/// What the command line asks for.
struct Arguments : ResultArguments {
  std::vector<std::string> captures;  ///< files, folders and globs, as given
  std::string joins;                  ///< a report whose motions are taken; empty: none
};

/// Reads the command line. Throws BadInput for wrong usage.
/// @return nothing when help or version were asked for; they have then been printed
std::optional<Arguments> ParseArguments(int argc, const char* const* argv);

}  // namespace ScrollingCapture::Program
