// What a call of the interface for C costs beside the same in C++.

#include <benchmark/benchmark.h>
#include <testkit/OwnedHandle.h>
#include <testkit/memory/PeakMemory.h>
#include <testkit/pages/Scenes.h>

#include <VelScrollingCapture/session/CaptureSession.h>

namespace ScrollingCapture {
namespace {

using Testing::Owned;

void Sizes(benchmark::internal::Benchmark* benchmark) {
  benchmark->ArgNames({"width", "height"});
  benchmark->Args({640, 480})->Args({1920, 1080});
  benchmark->Unit(benchmark::kMicrosecond);
}

/// A window that goes down an article and up again.
class ScrollingWindow {
 public:
  explicit ScrollingWindow(const benchmark::State& state)
      : size(static_cast<int>(state.range(0)), static_cast<int>(state.range(1))),
        page(Testing::DrawArticle({size.width, 4 * size.height}, 1)) {}

  /// With pixels that are the page's.
  cv::Mat Next() {
    const int step = size.height / 3;
    down = row + step + size.height > page.rows ? false : row < step ? true : down;
    row += down ? step : -step;
    return page.rowRange(row, row + size.height);
  }

 private:
  const cv::Size size;
  const cv::Mat page;
  int row = 0;
  bool down = true;
};

/// A host in C++ copies what it does not own, as the interface for C does.
void BM_Add_Cpp(benchmark::State& state) {
  ScrollingWindow window(state);
  CaptureSession session({});
  for (auto _ : state) {
    benchmark::DoNotOptimize(session.Add(window.Next().clone()));
  }
}

void AddInC(benchmark::State& state, vel_pixel_format format, vel_alpha alpha) {
  ScrollingWindow window(state);
  vel_session* made = nullptr;
  vel_session_create(nullptr, &made, nullptr, 0);
  const Owned<vel_session> session(made);
  for (auto _ : state) {
    const cv::Mat capture = window.Next();
    const vel_source_image image = {sizeof image, capture.data, capture.step, capture.cols,
                                    capture.rows, format,       alpha};
    if (vel_session_add(session.get(), &image, nullptr, nullptr) != VEL_OK) {
      state.SkipWithError("the capture was not added");
    }
  }
}

void BM_Add_Rgba(benchmark::State& state) { AddInC(state, VEL_RGBA, VEL_PREMULTIPLIED); }
void BM_Add_Bgrx(benchmark::State& state) { AddInC(state, VEL_BGRA, VEL_UNUSED); }

BENCHMARK(BM_Add_Cpp)->Name("BM_Add/reference")->Apply(Sizes);
BENCHMARK(BM_Add_Rgba)->Name("BM_Add/rgba")->Apply(Sizes);
BENCHMARK(BM_Add_Bgrx)->Name("BM_Add/bgrx")->Apply(Sizes);

constexpr int Captures = 6;

/// A whole picture into memory of the host's, and the matrices that takes besides.
template <typename Fill>
void ReadPicture(benchmark::State& state, const cv::Size& size, const Fill& fill) {
  cv::Mat pixels(size, CV_8UC4);
  double peakMiB = 0;
  for (auto _ : state) {
    const Testing::PeakMemory memory;
    fill(pixels);
    peakMiB = memory.MiB();
  }
  state.counters["peakMiB"] = peakMiB;
}

void BM_Read_Cpp(benchmark::State& state) {
  ScrollingWindow window(state);
  CaptureSession session({});
  for (int i = 0; i < Captures; ++i) {
    session.Add(window.Next().clone());
  }
  const auto part = session.Stitch(nullptr)->parts.front();
  ReadPicture(state, part->Size(), [&](cv::Mat& pixels) {
    part->Area({{0, 0}, part->Size()}).copyTo(pixels);
  });
}

void ReadInC(benchmark::State& state, vel_pixel_format format) {
  ScrollingWindow window(state);
  vel_session* session = nullptr;
  vel_session_create(nullptr, &session, nullptr, 0);
  const Owned<vel_session> ownedSession(session);
  for (int i = 0; i < Captures; ++i) {
    const cv::Mat capture = window.Next();
    const vel_source_image image = {
        sizeof image, capture.data, capture.step, capture.cols, capture.rows, VEL_RGBA, 0};
    vel_session_add(session, &image, nullptr, nullptr);
  }
  vel_stitched* stitched = nullptr;
  vel_session_stitch(session, nullptr, nullptr, &stitched);
  const Owned<vel_stitched> ownedStitched(stitched);
  vel_picture* picture = nullptr;
  vel_stitched_part(stitched, 0, &picture);
  const Owned<vel_picture> ownedPicture(picture);
  cv::Size size;
  vel_picture_size(picture, &size.width, &size.height);
  ReadPicture(state, size, [&](cv::Mat& pixels) {
    const vel_target_image image = {
        sizeof image, pixels.data, pixels.step, pixels.cols, pixels.rows, format, 0};
    if (vel_picture_read(picture, 0, 0, &image) != VEL_OK) {
      state.SkipWithError("the picture was not read");
    }
  });
}

void BM_Read_Rgba(benchmark::State& state) { ReadInC(state, VEL_RGBA); }
void BM_Read_Bgra(benchmark::State& state) { ReadInC(state, VEL_BGRA); }

BENCHMARK(BM_Read_Cpp)->Name("BM_Read/reference")->Apply(Sizes);
BENCHMARK(BM_Read_Rgba)->Name("BM_Read/rgba")->Apply(Sizes);
BENCHMARK(BM_Read_Bgra)->Name("BM_Read/bgra")->Apply(Sizes);

/// A call that does next to nothing.
void BM_Ask_Cpp(benchmark::State& state) {
  const CaptureSession session({});
  for (auto _ : state) {
    benchmark::DoNotOptimize(session.ExceedsMemoryLimit());
  }
}

void BM_Ask_C(benchmark::State& state) {
  vel_session* made = nullptr;
  vel_session_create(nullptr, &made, nullptr, 0);
  const Owned<vel_session> session(made);
  int32_t exceeds = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(vel_session_exceeds_memory_limit(session.get(), &exceeds));
  }
}

BENCHMARK(BM_Ask_Cpp)->Name("BM_Ask/reference");
BENCHMARK(BM_Ask_C)->Name("BM_Ask/c");

}  // namespace
}  // namespace ScrollingCapture
