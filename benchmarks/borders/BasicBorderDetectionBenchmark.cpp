#include <cstdlib>
#include <iostream>
#include <string>
#include <utility>

#include <benchmark/benchmark.h>
#include <opencv2/imgproc.hpp>
#include <testkit/MatrixTesting.h>
#include <testkit/OpenBorderDetection.h>
#include <testkit/StreamCapture.h>
#include <testkit/references/ReferenceContentBox.h>

#include <VelScrollingCapture/storage/BasicImageProvider.h>

namespace ScrollingCapture {
namespace {

const cv::Size CaptureSize(1920, 1080);
constexpr unsigned int DifferenceThreshold = 10;

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

/// What every search has to do before it can begin.
cv::Mat GreyDifference(BasicImageProvider& pair) {
  cv::Mat firstGrey;
  cv::Mat secondGrey;
  cv::Mat difference;
  cv::cvtColor(*pair.GetImageAt(0), firstGrey, cv::COLOR_RGBA2GRAY);
  cv::cvtColor(*pair.GetImageAt(1), secondGrey, cv::COLOR_RGBA2GRAY);
  cv::absdiff(firstGrey, secondGrey, difference);
  return difference;
}

void OnlySubtract(BasicImageProvider& pair, unsigned int /*neighborThreshold*/) {
  benchmark::DoNotOptimize(GreyDifference(pair));
}

void SearchWithReference(BasicImageProvider& pair, unsigned int neighborThreshold) {
  const Testing::ReferenceContentBox search(DifferenceThreshold, neighborThreshold);
  const cv::Mat difference = GreyDifference(pair);
  cv::Range rows(CaptureSize.height, 0);
  cv::Range columns(CaptureSize.width, 0);
  benchmark::DoNotOptimize(search.FindTopAndLeftContentBoundary(difference, rows, columns) &&
                           search.FindBottomAndRightContentBoundary(difference, rows, columns));
}

void SearchWithLibrary(BasicImageProvider& pair, unsigned int neighborThreshold) {
  Testing::OpenBorderDetection detection(DifferenceThreshold, neighborThreshold);
  cv::Range rows;
  cv::Range columns;
  benchmark::DoNotOptimize(detection.FindContent(pair, CaptureSize, rows, columns));
}

using FindContent = void (*)(BasicImageProvider& pair, unsigned int neighborThreshold);

void BM_FindContent(benchmark::State& state, FindContent find, Change changes,
                    unsigned int neighborThreshold) {
  BasicImageProvider pair = PairOf(changes);
  const Testing::StreamCapture errors(std::cerr);
  for (auto _ : state) {
    find(pair, neighborThreshold);
  }
}

struct Pattern {
  const char* name;
  Change changes;
  unsigned int neighborThreshold;
};

constexpr Pattern Patterns[] = {
    {"Nothing", Nothing, 2},
    {"Everything", Everything, 2},
    {"PageBelowToolbar", PageBelowToolbar, 2},
    {"IsolatedPixels", IsolatedPixels, 2},
    {"ChequeredBoard", ChequeredBoard, 4},
    {"LastCorner", LastCorner, 2},
    {"FirstCorner", FirstCorner, 2},
    {"Diagonal", Diagonal, 1},
    {"OtherDiagonal", OtherDiagonal, 1},
    {"EverythingButNoContent", Everything, 8},
};

const bool Registered = [] {
  for (const auto& [name, changes, neighborThreshold] : Patterns) {
    for (const auto& [contender, find] :
         {std::pair<const char*, FindContent>("reference", SearchWithReference),
          {"library", SearchWithLibrary},
          {"onlySubtract", OnlySubtract}}) {
      const std::string title = std::string("BM_FindContent/") + contender + "/" + name;
      benchmark::RegisterBenchmark(title.c_str(), BM_FindContent, find, changes, neighborThreshold)
          ->Unit(benchmark::kMicrosecond);
    }
  }
  return true;
}();

}  // namespace
}  // namespace ScrollingCapture
