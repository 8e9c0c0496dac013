#pragma once

#include <velscroll/arguments/RecordArguments.h>
#include <velscroll/terminal/Failure.h>

namespace ScrollingCapture::Program {

/// Captures a window live, and writes what was captured as the arguments ask for. Throws a Failure,
/// after which nothing new is on the disk but what --keep-captures keeps.
/// @return Done or DoneInParts
ExitStatus RunRecordCommand(const RecordArguments& arguments);

}  // namespace ScrollingCapture::Program
