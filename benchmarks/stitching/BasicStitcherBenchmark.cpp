#include <memory>
#include <vector>

#include <benchmark/benchmark.h>
#include <testkit/MatrixTesting.h>
#include <testkit/ScriptedDetector.h>

#include <VelScrollingCapture/stitching/BasicStitcher.h>
#include <VelScrollingCapture/storage/BasicImageProvider.h>

namespace ScrollingCapture {
namespace {

constexpr size_t Captures = 50;

/// Steps of a scroll: the captures overlap by a fifth, by two fifths and by three fifths.
void Steps(benchmark::internal::Benchmark* benchmark) {
  benchmark->ArgNames({"width", "height", "step"});
  for (const auto& [width, height] : {std::pair(640, 480), {1920, 1080}, {2880, 1800}}) {
    for (const int fifths : {4, 3, 2}) {
      benchmark->Args({width, height, height * fifths / 5});
    }
  }
  benchmark->Unit(benchmark::kMillisecond);
}

void BM_ComposeFiftyCaptures(benchmark::State& state) {
  const cv::Size size(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
  const Translation step(-static_cast<int>(state.range(2)), 0);
  BasicStitcher stitcher(
      std::make_shared<Testing::ScriptedDetector>(std::vector<Translation>(Captures - 1, step)));
  const cv::Mat noise = Testing::NoiseCapture(size, 1);
  BasicImageProvider captures;
  for (size_t i = 0; i < Captures; ++i) {
    cv::Mat capture = noise.clone();
    captures.Add(capture);
  }
  for (auto _ : state) {
    cv::Mat result;
    stitcher.Stitch(captures, result, nullptr, 0, 100, false);
    benchmark::DoNotOptimize(result.data);
  }
}

void BM_CopyTheirResult(benchmark::State& state) {
  const int rows = static_cast<int>(state.range(1)) +
                   static_cast<int>(Captures - 1) * static_cast<int>(state.range(2));
  const cv::Mat result = Testing::NoiseCapture({static_cast<int>(state.range(0)), rows}, 1);
  for (auto _ : state) {
    const cv::Mat copy = result.clone();
    benchmark::DoNotOptimize(copy.data);
  }
}

BENCHMARK(BM_CopyTheirResult)->Name("BM_ComposeFiftyCaptures/reference")->Apply(Steps);
BENCHMARK(BM_ComposeFiftyCaptures)->Name("BM_ComposeFiftyCaptures/library")->Apply(Steps);

}  // namespace
}  // namespace ScrollingCapture
