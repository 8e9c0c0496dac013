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

}  // namespace
}  // namespace ScrollingCapture
