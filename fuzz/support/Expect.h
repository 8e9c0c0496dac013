#pragma once

#include <cstdio>
#include <cstdlib>

namespace ScrollingCapture::Fuzzing {

/// Ends the run, which libFuzzer then reports with its input, unless what must hold does.
inline void Expect(bool holds, const char* what) {
  if (!holds) {
    std::fprintf(stderr, "Does not hold: %s\n", what);
    std::abort();
  }
}

}  // namespace ScrollingCapture::Fuzzing
