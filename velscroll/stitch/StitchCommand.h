#pragma once

#include <velscroll/arguments/Arguments.h>
#include <velscroll/terminal/Failure.h>

namespace ScrollingCapture::Program {

/// Does what the arguments ask for, from reading the captures to the line that says what was
/// written. Throws a Failure, after which nothing new is on the disk.
/// @return Done or DoneInParts
ExitStatus RunStitchCommand(const Arguments& arguments);

}  // namespace ScrollingCapture::Program
