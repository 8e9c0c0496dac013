#include <benchmark/benchmark.h>
#include <testkit/MatrixTesting.h>
#include <testkit/references/ReferenceCropping.h>

#include <VelScrollingCapture/core/Utilities.h>

namespace ScrollingCapture {
namespace {

constexpr int Shift = 300;

/// Translations of a straight scroll, a sideways scroll and a scroll in both directions.
void Scrolls(benchmark::internal::Benchmark* benchmark) {
  benchmark->ArgNames({"width", "height", "rows", "cols"});
  for (const auto& [width, height] : {std::pair(640, 480), {1920, 1080}, {2880, 1800}}) {
    benchmark->Args({width, height, -Shift, 0});
    benchmark->Args({width, height, 0, -Shift});
    benchmark->Args({width, height, -Shift, -Shift});
  }
  benchmark->Unit(benchmark::kMicrosecond);
}

using Crop = void (*)(cv::Mat&, const Translation&, const cv::Rect&);
using Blend = void (*)(const cv::Mat&, cv::Mat&, const cv::Range&, const cv::Range&);

void BM_Crop(benchmark::State& state, Crop crop) {
  const cv::Size size(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
  const Translation translation(static_cast<int>(state.range(2)), static_cast<int>(state.range(3)));
  cv::Mat capture = Testing::NoiseCapture(size, 1);
  for (auto _ : state) {
    crop(capture, translation, {{}, size});
    benchmark::ClobberMemory();
  }
}

void BM_CropAndBlend(benchmark::State& state, Crop crop, Blend blend) {
  const cv::Size size(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
  const Translation translation(static_cast<int>(state.range(2)), static_cast<int>(state.range(3)));
  cv::Mat capture = Testing::NoiseCapture(size, 1);
  cv::Mat canvas(size, CV_8UC4, cv::Scalar::all(0));
  for (auto _ : state) {
    crop(capture, translation, {{}, size});
    blend(capture, canvas, {0, size.height}, {0, size.width});
    benchmark::ClobberMemory();
  }
}

BENCHMARK_CAPTURE(BM_Crop, reference, Testing::ReferenceCropCaptureImage)->Apply(Scrolls);
BENCHMARK_CAPTURE(BM_Crop, library, Utilities::CropCaptureImage)->Apply(Scrolls);
BENCHMARK_CAPTURE(BM_CropAndBlend, reference, Testing::ReferenceCropCaptureImage,
                  Testing::ReferenceBlendImages)
    ->Apply(Scrolls);
BENCHMARK_CAPTURE(BM_CropAndBlend, library, Utilities::CropCaptureImage, Utilities::BlendImages)
    ->Apply(Scrolls);

}  // namespace
}  // namespace ScrollingCapture
