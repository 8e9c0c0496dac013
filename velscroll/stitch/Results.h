#pragma once

#include <velscroll/output/Outputs.h>
#include <velscroll/report/Report.h>
#include <velscroll/stitch/SessionReading.h>
#include <velscroll/terminal/Console.h>
#include <velscroll/terminal/Failure.h>

#include <VelScrollingCapture/session/CaptureSession.h>

namespace ScrollingCapture::Program {

/// Stitches what a session holds, and writes all results but the report, not yet under their names.
/// Only what the report tells outlives it.
///
/// Throws Failed, Cancelled, and BadInput when the preview has no room.
/// @param read   the captures, one element for each that the session was given
/// @param strict whether a join that is not sure is a failure
ReportContent StitchAndStage(CaptureSession& session, const SessionSettings& settings, bool strict,
                             const ReadFiles& read, Outputs& outputs, Console& console);

/// Writes the report, shows everything under its name, and says what was made, with warnings.
/// Throws Failed or Cancelled.
/// @return Done or DoneInParts
ExitStatus ShowResults(const ReportContent& content, Outputs& outputs, Console& console);

}  // namespace ScrollingCapture::Program
