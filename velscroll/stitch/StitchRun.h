#pragma once

#include <string>
#include <vector>

#include <velscroll/report/Report.h>
#include <velscroll/terminal/Console.h>

#include <VelScrollingCapture/session/CaptureSession.h>

namespace ScrollingCapture::Program {

/// What came of a stitch.
struct Stitched {
  SessionResult result;
  StageSeconds seconds;              ///< of detection and composing
  std::vector<std::string> remarks;  ///< what the library said meanwhile
};

/// Stitches the captures, with progress on the console and Ctrl-C answered. Throws Failed or
/// Cancelled.
Stitched RunStitch(CaptureSession& session, Console& console);

}  // namespace ScrollingCapture::Program
