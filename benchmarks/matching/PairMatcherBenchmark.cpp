#include <vector>

#include <benchmark/benchmark.h>
#include <benchmarks/support/WindowSizes.h>
#include <opencv2/imgproc.hpp>
#include <testkit/pages/Scenes.h>

#include <VelScrollingCapture/matching/CapturePlacer.h>

namespace ScrollingCapture {
namespace {

void Sizes(benchmark::internal::Benchmark* benchmark) {
  WindowSizes(benchmark);
  benchmark->Unit(benchmark::kMillisecond)->UseRealTime();
}

/// Two captures of a page that scrolls by two fifths of the height.
struct Pair {
  explicit Pair(const benchmark::State& state, bool isPhoto = false) {
    const cv::Size size(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
    const int step = 2 * size.height / 5;
    const cv::Size pageSize(size.width, size.height + step);
    const cv::Mat page =
        isPhoto ? Testing::DrawPhoto(pageSize, 1) : Testing::DrawArticle(pageSize, 1);
    first = Testing::Window(page, size, {0, 0});
    second = Testing::Window(page, size, {0, step});
  }

  cv::Mat first;
  cv::Mat second;
};

cv::Mat GreyOf(const cv::Mat& capture) {
  cv::Mat grey;
  cv::cvtColor(capture, grey, cv::COLOR_RGBA2GRAY);
  grey.convertTo(grey, CV_32F);
  return grey;
}

/// OpenCV's phase correlation, whose grey images are made beforehand.
void BM_MatchPair_Reference(benchmark::State& state) {
  const Pair pair(state);
  const cv::Mat first = GreyOf(pair.first);
  const cv::Mat second = GreyOf(pair.second);
  for (auto _ : state) {
    benchmark::DoNotOptimize(cv::phaseCorrelate(first, second));
  }
}
BENCHMARK(BM_MatchPair_Reference)->Name("BM_MatchPair/reference")->Apply(Sizes);

/// What each further capture of a sequence takes: its anchors, and votes and proof with the one
/// before.
void MatchNext(benchmark::State& state, bool isPhoto) {
  const Pair pair(state, isPhoto);
  const PreparedCapture earlier(pair.first);
  std::size_t bytes = 0;
  for (auto _ : state) {
    const PreparedCapture later(pair.second);
    const MatchedPair matched(pair.first, earlier, pair.second, later, {});
    benchmark::DoNotOptimize(&matched.Match());
    bytes = later.Bytes();
  }
  state.counters["bytesPerCaptureByte"] =
      static_cast<double>(bytes) /
      static_cast<double>(pair.second.total() * pair.second.elemSize());
}

void BM_MatchPair_Text(benchmark::State& state) { MatchNext(state, false); }
BENCHMARK(BM_MatchPair_Text)->Name("BM_MatchPair/text")->Apply(Sizes);

void BM_MatchPair_Photo(benchmark::State& state) { MatchNext(state, true); }
BENCHMARK(BM_MatchPair_Photo)->Name("BM_MatchPair/photo")->Apply(Sizes);

}  // namespace
}  // namespace ScrollingCapture
