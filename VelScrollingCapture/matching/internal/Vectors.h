#pragma once

/// \file
/// Inner loops that the compiler turns into vector instructions are compiled twice, from one
/// source: for every processor of the architecture, and for those with AVX2. The loop's function is
/// marked `[[gnu::always_inline]]`, so that it takes on the target of the function that calls it.
/// The choice is made when the program runs, and not by the dynamic linker, whose way of choosing
/// does not get on with sanitizers and static programs.

#if defined(__x86_64__) && defined(__GNUC__)
#define SCROLLING_CAPTURE_WIDE_TARGET [[gnu::target("avx2")]]
#else
#define SCROLLING_CAPTURE_WIDE_TARGET
#endif

namespace ScrollingCapture {

/// Which of the processor's instructions inner loops use. All give equal results.
enum class Vectors {
  Plain,   ///< what every processor of this architecture has
  Widest,  ///< the widest that this processor has and this library knows
};

/// Whether Vectors::Widest is more than Vectors::Plain here.
bool HasWideVectors();

}  // namespace ScrollingCapture
