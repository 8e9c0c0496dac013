#pragma once

#include <benchmark/benchmark.h>

namespace ScrollingCapture {

/// Runs a benchmark for captures of a small, of a usual and of a large window: range(0) is their
/// width, range(1) their height.
inline void WindowSizes(benchmark::internal::Benchmark* benchmark) {
  benchmark->ArgNames({"width", "height"});
  benchmark->Args({640, 480})->Args({1920, 1080})->Args({2880, 1800});
}

}  // namespace ScrollingCapture
