#pragma once

#include <string>

#include <live/RecordingStatus.h>

namespace ScrollingCapture::Program {

/// How a recording stands, in one line for the terminal.
std::string StatusLine(const Live::RecordingStatus& status);

}  // namespace ScrollingCapture::Program
