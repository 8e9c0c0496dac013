#include <chrono>
#include <memory>

#include <benchmark/benchmark.h>
#include <testkit/memory/PeakMemory.h>
#include <testkit/pages/Page.h>

#include <VelScrollingCapture/core/IStitcher.h>
#include <VelScrollingCapture/stitching/StitcherFactory.h>
#include <VelScrollingCapture/storage/BasicImageProvider.h>

namespace ScrollingCapture {
namespace {

const cv::Size CaptureSize(640, 480);
constexpr int Step = 150;

BasicImageProvider ScrolledCaptures(int count) {
  const cv::Mat page = Testing::TextPage({CaptureSize.width, CaptureSize.height + count * Step});
  BasicImageProvider captures;
  for (int i = 0; i < count; ++i) {
    cv::Mat capture = page(cv::Rect({0, i * Step}, CaptureSize)).clone();
    captures.Add(capture);
  }
  return captures;
}

/// From captures to the result: the time for a capture, or for a pair of neighbours, must not
/// depend on how many captures there are, and the memory must not exceed what a detection needs
/// before there is a result (which is the same for any number of captures) or the result itself.
void BM_StitchSequence(benchmark::State& state) {
  const int count = static_cast<int>(state.range(0));
  const std::shared_ptr<IStitcher> stitcher =
      StitcherFactory::CreateBasicStitcher(ScrollOrientation::Both, false, 1);
  double seconds = 0;
  double peakMiB = 0;
  double resultMiB = 0;
  for (auto _ : state) {
    BasicImageProvider captures = ScrolledCaptures(count);
    cv::Mat result;
    const Testing::PeakMemory memory;
    const auto start = std::chrono::steady_clock::now();
    if (!stitcher->Stitch(captures, result, nullptr, 0, 100, false)) {
      state.SkipWithError("the captures were not stitched");
      return;
    }
    const auto end = std::chrono::steady_clock::now();
    seconds = std::chrono::duration<double>(end - start).count();
    state.SetIterationTime(seconds);
    peakMiB = memory.MiB();
    resultMiB = static_cast<double>(result.total() * result.elemSize()) / (1 << 20);
  }
  state.counters["msPerCapture"] = 1000 * seconds / count;
  state.counters["msPerPair"] = 1000 * seconds / (count - 1);
  state.counters["peakMiB"] = peakMiB;
  state.counters["resultMiB"] = resultMiB;
}

BENCHMARK(BM_StitchSequence)
    ->ArgName("captures")
    ->Arg(10)
    ->Arg(100)
    ->Arg(1000)
    ->Iterations(1)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace ScrollingCapture
