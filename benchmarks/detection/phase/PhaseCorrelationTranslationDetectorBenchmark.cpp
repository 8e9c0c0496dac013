#include <vector>

#include <benchmark/benchmark.h>
#include <benchmarks/support/WindowSizes.h>
#include <opencv2/imgproc.hpp>
#include <testkit/memory/PeakMemory.h>
#include <testkit/pages/Page.h>
#include <testkit/references/ReferenceDetector.h>

#include <VelScrollingCapture/detection/phase/PhaseCorrelationTranslationDetector.h>
#include <VelScrollingCapture/storage/BasicImageProvider.h>

namespace ScrollingCapture {
namespace {

constexpr int CapturesInSequence = 10;

void Sizes(benchmark::internal::Benchmark* benchmark) {
  WindowSizes(benchmark);
  benchmark->Unit(benchmark::kMillisecond)->UseRealTime();
}

cv::Size SizeOf(const benchmark::State& state) {
  return {static_cast<int>(state.range(0)), static_cast<int>(state.range(1))};
}

/// Captures of a page that scrolls by two fifths of the height.
std::vector<cv::Mat> Captures(const cv::Size& size, int count) {
  const int step = 2 * size.height / 5;
  const cv::Mat page = Testing::TextPage({size.width, size.height + count * step});
  std::vector<cv::Mat> captures;
  captures.reserve(static_cast<size_t>(count));
  for (int i = 0; i < count; ++i) {
    captures.push_back(page(cv::Rect({0, i * step}, size)).clone());
  }
  return captures;
}

BasicImageProvider ProviderOf(std::vector<cv::Mat> captures) {
  BasicImageProvider provider;
  for (cv::Mat& capture : captures) {
    provider.Add(capture);
  }
  return provider;
}

Translation DetectWithReference(const cv::Mat& first, const cv::Mat& second) {
  return Testing::ReferenceDetector(Both).DetectTranslation(first, second);
}

Translation DetectWithLibrary(const cv::Mat& first, const cv::Mat& second) {
  return PhaseCorrelationTranslationDetector(Both, false, 1).DetectTranslation(first, second);
}

cv::Mat GreyInTwiceTheSize(const cv::Mat& capture) {
  cv::Mat grey;
  cv::cvtColor(capture, grey, cv::COLOR_RGBA2GRAY);
  cv::Mat enlarged(capture.size() * 2, CV_32FC1, cv::Scalar(0));
  const cv::Point start((enlarged.cols - capture.cols) / 2, (enlarged.rows - capture.rows) / 2);
  grey.convertTo(enlarged(cv::Rect(start, capture.size())), CV_32F);
  return enlarged;
}

/// OpenCV's phase correlation of the same images: magnitudes divided out, and a weighted centroid
/// of the peak. It shifts quadrants, too.
Translation DetectWithPhaseCorrelate(const cv::Mat& first, const cv::Mat& second) {
  const cv::Point2d shift =
      cv::phaseCorrelate(GreyInTwiceTheSize(first), GreyInTwiceTheSize(second));
  return {cvRound(shift.y), cvRound(shift.x)};
}

using DetectPair = Translation (*)(const cv::Mat& first, const cv::Mat& second);

void BM_DetectPair(benchmark::State& state, DetectPair detect) {
  const std::vector<cv::Mat> captures = Captures(SizeOf(state), 2);
  const auto detectPair = [&] { benchmark::DoNotOptimize(detect(captures[0], captures[1])); };
  state.counters["peakMiB"] = Testing::PeakMiBOf(detectPair);
  for (auto _ : state) {
    detectPair();
  }
}

BENCHMARK_CAPTURE(BM_DetectPair, reference, DetectWithReference)->Apply(Sizes);
BENCHMARK_CAPTURE(BM_DetectPair, library, DetectWithLibrary)->Apply(Sizes);
BENCHMARK_CAPTURE(BM_DetectPair, phaseCorrelate, DetectWithPhaseCorrelate)->Apply(Sizes);

/// Runs the sequence of the library with the pairs of the reference.
class ReferencePairs : public PhaseCorrelationTranslationDetector {
 public:
  explicit ReferencePairs(unsigned int threadCount)
      : PhaseCorrelationTranslationDetector(Both, false, threadCount) {}

  using PhaseCorrelationTranslationDetector::DetectTranslation;
  Translation DetectTranslation(const cv::Mat& first, const cv::Mat& second) override {
    return DetectWithReference(first, second);
  }
};

template <typename Detector>
void DetectSequence(benchmark::State& state, Detector detector) {
  BasicImageProvider captures = ProviderOf(Captures(SizeOf(state), CapturesInSequence));
  const auto detectSequence = [&] {
    benchmark::DoNotOptimize(detector.DetectTranslation(captures, nullptr, 0, 100));
  };
  state.counters["peakMiB"] = Testing::PeakMiBOf(detectSequence);
  for (auto _ : state) {
    detectSequence();
  }
}

void BM_DetectSequence_Reference(benchmark::State& state) {
  DetectSequence(state, ReferencePairs(1));
}

void BM_DetectSequence_Library(benchmark::State& state) {
  DetectSequence(state, PhaseCorrelationTranslationDetector(Both, false, 1));
}

void BM_DetectSequence_TwoThreads(benchmark::State& state) {
  DetectSequence(state, PhaseCorrelationTranslationDetector(Both, false, 2));
}

BENCHMARK(BM_DetectSequence_Reference)->Name("BM_DetectSequence/reference")->Apply(Sizes);
BENCHMARK(BM_DetectSequence_Library)->Name("BM_DetectSequence/library")->Apply(Sizes);

/// The yardstick here is the library itself on one thread.
BENCHMARK(BM_DetectSequence_Library)->Name("BM_DetectSequenceOnThreads/reference")->Apply(Sizes);
BENCHMARK(BM_DetectSequence_TwoThreads)->Name("BM_DetectSequenceOnThreads/two")->Apply(Sizes);

}  // namespace
}  // namespace ScrollingCapture
