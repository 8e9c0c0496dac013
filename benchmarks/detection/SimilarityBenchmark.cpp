#include <benchmark/benchmark.h>

#include <VelScrollingCapture/core/Utilities.h>

#include "../../tests/detection/ReferenceDetector.h"
#include "../../tests/support/MatrixTesting.h"
#include "../support/PeakMemory.h"

namespace ScrollingCapture {
namespace {

using Similarity = double (*)(const cv::Mat& first, const cv::Mat& second);

void BM_Similarity(benchmark::State& state, Similarity similarity) {
  const cv::Size size(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
  const cv::Mat first = Testing::NoiseCapture(size, 1);
  const cv::Mat second = Testing::NoiseCapture(size, 2);
  const auto compare = [&] { benchmark::DoNotOptimize(similarity(first, second)); };
  state.counters["peakMiB"] = Benchmarks::PeakMiBOf(compare);
  for (auto _ : state) {
    compare();
  }
}

void Sizes(benchmark::internal::Benchmark* benchmark) {
  benchmark->ArgNames({"width", "height"});
  benchmark->Args({640, 480})->Args({1920, 1080})->Args({2880, 1800});
  benchmark->Unit(benchmark::kMicrosecond);
}

BENCHMARK_CAPTURE(BM_Similarity, reference, Testing::ReferenceSimilarity)->Apply(Sizes);
BENCHMARK_CAPTURE(BM_Similarity, library, Utilities::CalculateSimilarity)->Apply(Sizes);

}  // namespace
}  // namespace ScrollingCapture
