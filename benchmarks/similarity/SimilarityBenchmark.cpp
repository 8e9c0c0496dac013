#include <benchmark/benchmark.h>
#include <benchmarks/support/WindowSizes.h>
#include <testkit/MatrixTesting.h>
#include <testkit/memory/PeakMemory.h>
#include <testkit/pages/Page.h>
#include <testkit/references/ReferenceDetector.h>

#include <VelScrollingCapture/core/Utilities.h>

namespace ScrollingCapture {
namespace {

using Similarity = double (*)(const cv::Mat& first, const cv::Mat& second);
using MakeSecond = cv::Mat (*)(const cv::Mat& first);

/// The capture after a pause.
cv::Mat Repeated(const cv::Mat& first) { return first.clone(); }

/// The same page, scrolled on by a tenth of the height.
cv::Mat Scrolled(const cv::Mat& first) {
  cv::Mat second;
  cv::repeat(first, 2, 1, second);
  return second.rowRange(first.rows / 10, first.rows / 10 + first.rows).clone();
}

/// A capture without a pixel in common.
cv::Mat Unrelated(const cv::Mat& first) { return Testing::NoiseCapture(first.size(), 2); }

void BM_Similarity(benchmark::State& state, Similarity similarity, MakeSecond makeSecond) {
  const cv::Size size(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
  const cv::Mat first = Testing::TextPage(size);
  const cv::Mat second = makeSecond(first);
  const auto compare = [&] { benchmark::DoNotOptimize(similarity(first, second)); };
  state.counters["peakMiB"] = Testing::PeakMiBOf(compare);
  for (auto _ : state) {
    compare();
  }
}

void Sizes(benchmark::internal::Benchmark* benchmark) {
  WindowSizes(benchmark);
  benchmark->Unit(benchmark::kMicrosecond);
}

BENCHMARK_CAPTURE(BM_Similarity, reference, Testing::ReferenceSimilarity, Repeated)
    ->Name("BM_SimilarityOfARepeat/reference")
    ->Apply(Sizes);
BENCHMARK_CAPTURE(BM_Similarity, library, Utilities::CalculateSimilarity, Repeated)
    ->Name("BM_SimilarityOfARepeat/library")
    ->Apply(Sizes);
BENCHMARK_CAPTURE(BM_Similarity, reference, Testing::ReferenceSimilarity, Scrolled)
    ->Name("BM_SimilarityAfterAScroll/reference")
    ->Apply(Sizes);
BENCHMARK_CAPTURE(BM_Similarity, library, Utilities::CalculateSimilarity, Scrolled)
    ->Name("BM_SimilarityAfterAScroll/library")
    ->Apply(Sizes);
BENCHMARK_CAPTURE(BM_Similarity, reference, Testing::ReferenceSimilarity, Unrelated)
    ->Name("BM_SimilarityOfNoise/reference")
    ->Apply(Sizes);
BENCHMARK_CAPTURE(BM_Similarity, library, Utilities::CalculateSimilarity, Unrelated)
    ->Name("BM_SimilarityOfNoise/library")
    ->Apply(Sizes);

}  // namespace
}  // namespace ScrollingCapture
