#include <chrono>
#include <cstdlib>

#include <benchmark/benchmark.h>
#include <testkit/pages/Scenes.h>

#include <VelScrollingCapture/matching/CapturePlacer.h>
#include <VelScrollingCapture/storage/BasicImageProvider.h>

namespace ScrollingCapture {
namespace {

const cv::Size Size(320, 240);
constexpr int Step = 2 * 240 / 5;

/// A window that goes so many steps down, and then up and down again.
BasicImageProvider ScrolledCaptures(int count, int turn) {
  const int steps = std::min(count, turn);
  const cv::Mat page = Testing::DrawArticle({Size.width, Size.height + steps * Step}, 1);
  BasicImageProvider captures;
  for (int i = 0; i < count; ++i) {
    const int step = steps - std::abs(i % (2 * steps) - steps);
    cv::Mat capture = page(cv::Rect({0, step * Step}, Size));
    captures.Add(capture);
  }
  return captures;
}

/// Neither the time for a capture may depend on how many there are, nor the memory for the anchors
/// of a picture on how many captures show it.
void PlaceAll(benchmark::State& state, int turn) {
  const int count = static_cast<int>(state.range(0));
  BasicImageProvider captures = ScrolledCaptures(count, turn);
  double seconds = 0;
  std::size_t bytes = 0;
  for (auto _ : state) {
    const auto start = std::chrono::steady_clock::now();
    CapturePlacer placer(captures, {});
    for (std::size_t i = 0; i < captures.Count(); ++i) {
      const auto capture = captures.GetImageAt(i);
      benchmark::DoNotOptimize(placer.Place(i, PreparedCapture(*capture)));
    }
    seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    bytes = placer.Bytes();
    state.SetIterationTime(seconds);
  }
  const double pixels = 1.0 * Size.width * (Size.height + Step * std::min(count, turn));
  state.counters["msPerCapture"] = 1000 * seconds / count;
  state.counters["bytesPerPixel"] = static_cast<double>(bytes) / pixels;
}

void Counts(benchmark::internal::Benchmark* benchmark) {
  benchmark->ArgName("captures")->Arg(10)->Arg(100)->Arg(1000);
  benchmark->UseManualTime()->Unit(benchmark::kMillisecond);
}

BENCHMARK_CAPTURE(PlaceAll, down, 1000)->Name("BM_PlaceCaptures/down")->Apply(Counts);
BENCHMARK_CAPTURE(PlaceAll, backAndForth, 40)->Name("BM_PlaceCaptures/backAndForth")->Apply(Counts);

}  // namespace
}  // namespace ScrollingCapture
