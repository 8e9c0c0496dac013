#pragma once

#include <string>
#include <vector>

#include <velscroll/terminal/Console.h>

#include <VelScrollingCapture/session/CaptureSession.h>

namespace ScrollingCapture::Program {

/// What came of a stitch.
struct Stitched {
  SessionResult result;
  double detectionSeconds = 0;
  double composingSeconds = 0;
  std::vector<std::string> remarks;  ///< what the library said meanwhile
};

/// Stitches the captures, with progress on the console and Ctrl-C answered. Throws Failed or
/// Cancelled.
Stitched RunStitch(CaptureSession& session, Console& console);

}  // namespace ScrollingCapture::Program
