#include <benchmark/benchmark.h>
#include <testkit/memory/PeakMemory.h>
#include <testkit/pages/DrawnScene.h>

#include <VelScrollingCapture/mosaic/Mosaic.h>
#include <VelScrollingCapture/storage/BasicImageProvider.h>

namespace ScrollingCapture {
namespace {

using Testing::DrawnScene;

/// A window that scrolls down by two thirds of its height, with or without a header.
DrawnScene ScrolledWindow(const cv::Size& window, int captures, bool hasHeader) {
  const int step = window.height * 2 / 3;
  std::vector<Place> places;
  for (int i = 0; i < captures; ++i) {
    places.push_back({i * step + i % 5, 0});
  }
  const cv::Mat page = Testing::TextPage({window.width, places.back().row + window.height}, 1);
  DrawnScene scene(page, window, places);
  if (hasHeader) {
    scene.With([](int, cv::Mat& capture) {
      capture(cv::Rect(0, 0, capture.cols, 48)).setTo(Testing::Blue);
      Testing::DrawText(capture, {20, 12, capture.cols - 40, 24}, 2, Testing::White);
    });
  }
  return scene;
}

void Sizes(benchmark::internal::Benchmark* benchmark) {
  benchmark->ArgNames({"width", "height", "header"});
  for (const int header : {0, 1}) {
    benchmark->Args({640, 480, header})->Args({1920, 1080, header});
  }
  benchmark->Unit(benchmark::kMillisecond);
}

DrawnScene SceneOf(const benchmark::State& state) {
  constexpr int Captures = 12;
  return ScrolledWindow({static_cast<int>(state.range(0)), static_cast<int>(state.range(1))},
                        Captures, state.range(2) != 0);
}

/// Copying a picture of the same size once.
void BM_Compose_Copy(benchmark::State& state) {
  const cv::Mat picture = SceneOf(state).Content();
  for (auto _ : state) {
    benchmark::DoNotOptimize(picture.clone());
  }
}

/// The whole picture, once the captures have been analysed.
void BM_Compose_Library(benchmark::State& state) {
  const DrawnScene scene = SceneOf(state);
  BasicImageProvider captures;
  Testing::AddAll(captures, scene.Captures());
  const Mosaic mosaic(captures, scene.Places());
  for (auto _ : state) {
    cv::Mat picture;
    mosaic.Render({{}, mosaic.Size()}, picture);
    benchmark::DoNotOptimize(picture);
  }
}

/// The analysis that comes before.
void BM_Compose_Analysis(benchmark::State& state) {
  const DrawnScene scene = SceneOf(state);
  BasicImageProvider captures;
  Testing::AddAll(captures, scene.Captures());
  for (auto _ : state) {
    const Mosaic mosaic(captures, scene.Places());
    benchmark::DoNotOptimize(mosaic.Size());
  }
}

BENCHMARK(BM_Compose_Copy)->Name("BM_Compose/reference")->Apply(Sizes);
BENCHMARK(BM_Compose_Library)->Name("BM_Compose/library")->Apply(Sizes);
BENCHMARK(BM_Compose_Analysis)->Name("BM_Compose/analysis")->Apply(Sizes);

/// A longer and longer page with a header: time and memory for a capture must not depend on how
/// many there are.
void BM_AnalyseALongPage(benchmark::State& state) {
  const int count = static_cast<int>(state.range(0));
  const DrawnScene scene = ScrolledWindow({320, 240}, count, true);
  BasicImageProvider captures;
  Testing::AddAll(captures, scene.Captures());
  double peakMiB = 0;
  for (auto _ : state) {
    const Testing::PeakMemory memory;
    const Mosaic mosaic(captures, scene.Places());
    peakMiB = memory.MiB();
  }
  state.counters["peakMiB"] = peakMiB;
  state.counters["perCapture"] = benchmark::Counter(
      count, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

BENCHMARK(BM_AnalyseALongPage)
    ->ArgName("captures")
    ->Arg(10)
    ->Arg(100)
    ->Arg(1000)
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace ScrollingCapture
