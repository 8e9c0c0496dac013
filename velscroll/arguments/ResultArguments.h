#pragma once

#include <velscroll/output/Outputs.h>
#include <velscroll/terminal/Console.h>

#include <VelScrollingCapture/session/SessionSettings.h>

namespace ScrollingCapture::Program {

/// What a command line asks to make of captures.
struct ResultArguments {
  bool strict = false;  ///< whether a join that is not sure is a failure
  OutputSettings outputs;
  SessionSettings session;
  Loudness loudness = Loudness::All;
};

}  // namespace ScrollingCapture::Program
