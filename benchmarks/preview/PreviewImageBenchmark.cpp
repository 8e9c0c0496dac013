#include <benchmark/benchmark.h>
#include <benchmarks/support/WindowSizes.h>
#include <testkit/MatrixTesting.h>

#include <VelScrollingCapture/detection/phase/PhaseCorrelationTranslationDetector.h>
#include <VelScrollingCapture/preview/PreviewImage.h>

namespace ScrollingCapture {
namespace {

constexpr int ShrunkWidth = 250;

void Sizes(benchmark::internal::Benchmark* benchmark) {
  WindowSizes(benchmark);
  benchmark->Unit(benchmark::kMicrosecond);
}

cv::Size SizeOf(const benchmark::State& state) {
  return {static_cast<int>(state.range(0)), static_cast<int>(state.range(1))};
}

/// A window on a page of noise that goes down and up again, in steps that are whole pixels of the
/// preview.
class ScrollingWindow {
 public:
  explicit ScrollingWindow(const cv::Size& size)
      : page(Testing::NoiseCapture({size.width, 4 * size.height}, 1)),
        window({}, size),
        step(size.width / 10) {}

  cv::Mat Next() {
    const bool hasRoom = window.y + step >= 0 && window.br().y + step <= page.rows;
    step = hasRoom ? step : -step;
    window.y += step;
    return page(window);
  }

 private:
  cv::Mat page;
  cv::Rect window;
  int step;
};

/// The least that a preview can do: look at every pixel, and detect at its own width.
void BM_AddCapture_ReadAndDetect(benchmark::State& state) {
  const cv::Size size = SizeOf(state);
  ScrollingWindow window(size);
  const cv::Size shrunk(ShrunkWidth, ShrunkWidth * size.height / size.width);
  ScrollingWindow shrunkWindow(shrunk);
  PhaseCorrelationTranslationDetector detector(ScrollOrientation::Both, false, 1);
  cv::Mat previous = shrunkWindow.Next();
  for (auto _ : state) {
    benchmark::DoNotOptimize(cv::sum(window.Next()));
    const cv::Mat current = shrunkWindow.Next();
    benchmark::DoNotOptimize(detector.DetectTranslation(previous, current));
    previous = current;
  }
}

void BM_AddCapture_Library(benchmark::State& state) {
  ScrollingWindow window(SizeOf(state));
  PreviewImage preview;
  for (auto _ : state) {
    benchmark::DoNotOptimize(preview.AddCapture(window.Next()));
  }
}

BENCHMARK(BM_AddCapture_ReadAndDetect)->Name("BM_AddCapture/reference")->Apply(Sizes);
BENCHMARK(BM_AddCapture_Library)->Name("BM_AddCapture/library")->Apply(Sizes);

/// A page that grows longer and longer: the time for a capture must not depend on how many there
/// were before.
void BM_PreviewOfALongPage(benchmark::State& state) {
  const cv::Size size(640, 480);
  const int captures = static_cast<int>(state.range(0));
  constexpr int Step = 128;
  const cv::Mat page = Testing::NoiseCapture({size.width, size.height + Step * captures}, 2);
  for (auto _ : state) {
    PreviewImage preview;
    for (int i = 0; i < captures; ++i) {
      preview.AddCapture(page(cv::Rect(cv::Point(0, Step * i), size)));
    }
  }
  state.counters["perCapture"] = benchmark::Counter(
      captures, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

BENCHMARK(BM_PreviewOfALongPage)
    ->ArgName("captures")
    ->Arg(10)
    ->Arg(100)
    ->Arg(400)
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace ScrollingCapture
