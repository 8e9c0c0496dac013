#pragma once

#include <algorithm>
#include <cstdint>

#include <c/calls/Failures.h>

namespace ScrollingCapture::C {

/// A number of threads that a caller asks for; 0 counts as 1. Throws InvalidArgument when it asks
/// for more than 1024.
inline unsigned int ThreadCountOf(std::uint32_t asked) {
  constexpr std::uint32_t MostThreads = 1024;
  return std::max(InRange<std::uint32_t>(asked, 0, MostThreads, "thread_count"), 1U);
}

}  // namespace ScrollingCapture::C
