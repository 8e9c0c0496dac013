#pragma once

#include <iostream>

#include <testkit/StreamCapture.h>

namespace ScrollingCapture::Fuzzing {

/// Keeps the library's messages to itself while it lives.
struct Quiet {
  Testing::StreamCapture output{std::cout};
  Testing::StreamCapture errors{std::cerr};
};

}  // namespace ScrollingCapture::Fuzzing
