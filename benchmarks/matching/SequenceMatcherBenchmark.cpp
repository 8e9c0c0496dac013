#include <chrono>

#include <benchmark/benchmark.h>
#include <testkit/pages/Scenes.h>

#include <VelScrollingCapture/matching/SequenceMatcher.h>
#include <VelScrollingCapture/storage/BasicImageProvider.h>

namespace ScrollingCapture {
namespace {

BasicImageProvider ScrolledCaptures(const cv::Size& size, int count) {
  const int step = 2 * size.height / 5;
  const cv::Mat page = Testing::DrawArticle({size.width, size.height + count * step}, 1);
  BasicImageProvider captures;
  for (int i = 0; i < count; ++i) {
    cv::Mat capture = page(cv::Rect({0, i * step}, size));
    captures.Add(capture);
  }
  return captures;
}

void MatchWith(benchmark::State& state, unsigned int threadCount) {
  const cv::Size size(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
  BasicImageProvider captures = ScrolledCaptures(size, 24);
  for (auto _ : state) {
    benchmark::DoNotOptimize(MatchSequence(captures, nullptr, {{}, threadCount, 0, 100}));
  }
}

void Sizes(benchmark::internal::Benchmark* benchmark) {
  benchmark->ArgNames({"width", "height"})->Args({640, 480})->Args({1920, 1080});
  benchmark->Unit(benchmark::kMillisecond)->UseRealTime();
}

BENCHMARK_CAPTURE(MatchWith, one, 1U)->Name("BM_MatchThreads/reference")->Apply(Sizes);
BENCHMARK_CAPTURE(MatchWith, two, 2U)->Name("BM_MatchThreads/two")->Apply(Sizes);

/// The time and the memory for a capture must not depend on how many there are.
void BM_MatchSequence(benchmark::State& state) {
  const int count = static_cast<int>(state.range(0));
  BasicImageProvider captures = ScrolledCaptures({640, 480}, count);
  double seconds = 0;
  for (auto _ : state) {
    const auto start = std::chrono::steady_clock::now();
    benchmark::DoNotOptimize(MatchSequence(captures, nullptr, {{}, 1, 0, 100}));
    seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    state.SetIterationTime(seconds);
  }
  state.counters["msPerCapture"] = 1000 * seconds / count;
}

BENCHMARK(BM_MatchSequence)
    ->ArgName("captures")
    ->Arg(10)
    ->Arg(100)
    ->Arg(1000)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace ScrollingCapture
