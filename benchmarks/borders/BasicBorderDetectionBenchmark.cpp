#include <chrono>
#include <cstdlib>
#include <iostream>

#include <benchmark/benchmark.h>
#include <opencv2/imgproc.hpp>

#include <VelScrollingCapture/borders/BasicBorderDetection.h>
#include <VelScrollingCapture/storage/BasicImageProvider.h>

#include "../../tests/support/MatrixTesting.h"
#include "../../tests/support/StreamCapture.h"

namespace ScrollingCapture {
namespace {

const cv::Size CaptureSize(1920, 1080);
constexpr unsigned int DifferenceThreshold = 10;

class OpenDetection : public BasicBorderDetection {
 public:
  using BasicBorderDetection::BasicBorderDetection;
  using BasicBorderDetection::FindContent;
};

/// Whether a pixel differs between the two captures of a pair.
using Change = bool (*)(int row, int column);

bool Nothing(int /*row*/, int /*column*/) { return false; }
bool Everything(int /*row*/, int /*column*/) { return true; }
bool PageBelowToolbar(int row, int column) { return row > 80 && (row / 16 + column / 9) % 3 != 0; }
bool IsolatedPixels(int row, int column) { return row % 2 == 0 && column % 2 == 0; }
bool ChequeredBoard(int row, int column) { return (row + column) % 2 == 0; }
bool LastCorner(int row, int column) { return row > 1070 && column > 1910; }
bool FirstCorner(int row, int column) { return row < 10 && column < 10; }
bool Diagonal(int row, int column) { return std::abs(2 * row - column) < 5; }
bool OtherDiagonal(int row, int column) { return std::abs(2 * row - (1920 - column)) < 5; }

/// A capture of noise, and the same with other pixels where `changes` tells.
BasicImageProvider PairOf(Change changes) {
  cv::Mat first = Testing::NoiseCapture(CaptureSize, 1);
  cv::Mat second = first.clone();
  second.forEach<cv::Vec4b>([changes](cv::Vec4b& pixel, const int* position) {
    if (changes(position[0], position[1])) {
      for (int channel = 0; channel < 3; ++channel) {
        pixel[channel] = static_cast<uchar>(pixel[channel] > 127 ? 0 : 255);
      }
    }
  });
  BasicImageProvider pair;
  pair.Add(first);
  pair.Add(second);
  return pair;
}

template <typename Work>
double SecondsOf(Work work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// Finds the content box of two captures. The counter "ratio" tells how many times as long that
/// takes as converting both to grey and subtracting them, measured in turns.
void BM_FindContent(benchmark::State& state, Change changes, unsigned int neighborThreshold) {
  BasicImageProvider pair = PairOf(changes);
  OpenDetection detection(nullptr, DifferenceThreshold, neighborThreshold);
  const Testing::StreamCapture errors(std::cerr);
  cv::Mat firstGrey;
  cv::Mat secondGrey;
  cv::Mat difference;
  double searchSeconds = 0;
  double differenceSeconds = 0;
  for (auto _ : state) {
    differenceSeconds += SecondsOf([&] {
      cv::cvtColor(*pair.GetImageAt(0), firstGrey, cv::COLOR_RGBA2GRAY);
      cv::cvtColor(*pair.GetImageAt(1), secondGrey, cv::COLOR_RGBA2GRAY);
      cv::absdiff(firstGrey, secondGrey, difference);
      benchmark::DoNotOptimize(difference.data);
    });
    const double seconds = SecondsOf([&] {
      cv::Range rows;
      cv::Range columns;
      benchmark::DoNotOptimize(detection.FindContent(pair, CaptureSize, rows, columns));
    });
    searchSeconds += seconds;
    state.SetIterationTime(seconds);
  }
  state.counters["ratio"] = searchSeconds / differenceSeconds;
}

void Settings(benchmark::internal::Benchmark* benchmark) {
  benchmark->UseManualTime()->Unit(benchmark::kMillisecond);
}

BENCHMARK_CAPTURE(BM_FindContent, Nothing, Nothing, 2)->Apply(Settings);
BENCHMARK_CAPTURE(BM_FindContent, Everything, Everything, 2)->Apply(Settings);
BENCHMARK_CAPTURE(BM_FindContent, PageBelowToolbar, PageBelowToolbar, 2)->Apply(Settings);
BENCHMARK_CAPTURE(BM_FindContent, IsolatedPixels, IsolatedPixels, 2)->Apply(Settings);
BENCHMARK_CAPTURE(BM_FindContent, ChequeredBoard, ChequeredBoard, 4)->Apply(Settings);
BENCHMARK_CAPTURE(BM_FindContent, LastCorner, LastCorner, 2)->Apply(Settings);
BENCHMARK_CAPTURE(BM_FindContent, FirstCorner, FirstCorner, 2)->Apply(Settings);
BENCHMARK_CAPTURE(BM_FindContent, Diagonal, Diagonal, 1)->Apply(Settings);
BENCHMARK_CAPTURE(BM_FindContent, OtherDiagonal, OtherDiagonal, 1)->Apply(Settings);
BENCHMARK_CAPTURE(BM_FindContent, EverythingButNoContent, Everything, 8)->Apply(Settings);

}  // namespace
}  // namespace ScrollingCapture
