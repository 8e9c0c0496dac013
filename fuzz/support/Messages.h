#pragma once

#include <algorithm>
#include <string>

#include <fuzz/support/Expect.h>
#include <velscroll/terminal/Failure.h>

namespace ScrollingCapture::Fuzzing {

/// What a failure tells is one line, without anything that a terminal would obey.
inline void ExpectOneLine(const Program::Failure& failure) {
  const std::string line = failure.what();
  Expect(!line.empty(), "a failure says something");
  const auto isControl = [](char character) {
    return (static_cast<unsigned char>(character) < 0x20) || character == 0x7F;
  };
  Expect(std::none_of(line.begin(), line.end(), isControl), "a failure's message is one line");
}

}  // namespace ScrollingCapture::Fuzzing
