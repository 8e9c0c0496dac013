#include <benchmark/benchmark.h>
#include <benchmarks/support/WindowSizes.h>
#include <live/FrameTracker.h>
#include <testkit/pages/Scenes.h>

#include <VelScrollingCapture/matching/PairMatcher.h>

namespace ScrollingCapture::Live {
namespace {

void Sizes(benchmark::internal::Benchmark* benchmark) {
  WindowSizes(benchmark);
  benchmark->Unit(benchmark::kMillisecond)->UseRealTime();
}

/// Two frames of a window that scrolls.
struct Frames {
  explicit Frames(const benchmark::State& state) {
    const cv::Size size(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
    const int step = size.height / 10;
    const cv::Mat page = Testing::DrawArticle({size.width, size.height + step}, 1);
    first = Testing::Window(page, size, {0, 0});
    second = Testing::Window(page, size, {0, step});
  }

  cv::Mat first;
  cv::Mat second;
};

/// The proof on whole captures.
void BM_FollowFrame_Reference(benchmark::State& state) {
  const Frames frames(state);
  for (auto _ : state) {
    benchmark::DoNotOptimize(MatchPair(frames.first, frames.second, {}));
  }
}
BENCHMARK(BM_FollowFrame_Reference)->Name("BM_FollowFrame/reference")->Apply(Sizes);

void BM_FollowFrame_Lines(benchmark::State& state) {
  const Frames frames(state);
  FrameTracker tracker{MatchingSettings()};
  tracker.Follow(frames.first);
  for (auto _ : state) {
    benchmark::DoNotOptimize(tracker.MotionTo(frames.second));
  }
}
BENCHMARK(BM_FollowFrame_Lines)->Name("BM_FollowFrame/lines")->Apply(Sizes);

}  // namespace
}  // namespace ScrollingCapture::Live
