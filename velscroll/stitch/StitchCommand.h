#pragma once

#include <velscroll/arguments/Arguments.h>

namespace ScrollingCapture::Program {

/// Does what the arguments ask for, from reading the captures to the line that says what was
/// written. Throws a Failure, after which nothing new is on the disk.
void RunStitchCommand(const Arguments& arguments);

}  // namespace ScrollingCapture::Program
