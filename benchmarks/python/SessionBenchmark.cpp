#include <algorithm>
#include <optional>
#include <stdexcept>
#include <vector>

#include <benchmark/benchmark.h>
#include <pybind11/embed.h>
#include <pybind11/numpy.h>
#include <testkit/MatrixTesting.h>

#include <VelScrollingCapture/session/CaptureSession.h>

// What a call from Python costs beside the same call from C++.

namespace ScrollingCapture {
namespace {

namespace py = pybind11;

/// Of the Python that the package is built for, which need not be the one that the shell finds
/// first: the interpreter looks for its own modules beside the program of this name.
PyConfig Configuration() {
  PyConfig configuration;
  PyConfig_InitPythonConfig(&configuration);
  const PyStatus status =
      PyConfig_SetBytesString(&configuration, &configuration.program_name, VEL_PYTHON);
  if (PyStatus_Exception(status) != 0) {
    throw std::runtime_error(status.err_msg);
  }
  return configuration;
}

py::module_ Package() {
  static PyConfig configuration = Configuration();
  static const py::scoped_interpreter interpreter(&configuration);
  py::module_::import("sys").attr("path").attr("insert")(0, VEL_PYTHON_PATH);
  return py::module_::import("velscrollingcapture");
}

py::array ArrayOf(const cv::Mat& capture) {
  return py::array(py::dtype::of<unsigned char>(), {capture.rows, capture.cols, 4}, capture.data);
}

/// What a window of that size shows that scrolls down by two thirds of its height.
std::vector<cv::Mat> Captures(const benchmark::State& state) {
  constexpr int Count = 8;
  const cv::Size window(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
  const int step = window.height * 2 / 3;
  const cv::Mat page = Testing::NoiseCapture({window.width, window.height + (Count - 1) * step}, 1);
  std::vector<cv::Mat> captures;
  captures.reserve(Count);
  for (int i = 0; i < Count; ++i) {
    captures.push_back(page.rowRange(i * step, i * step + window.height).clone());
  }
  return captures;
}

void Sizes(benchmark::internal::Benchmark* benchmark) {
  benchmark->ArgNames({"width", "height"})->Args({640, 480})->Args({1920, 1080});
  benchmark->Unit(benchmark::kMillisecond);
}

/// Captures are copied, since whoever took them goes on using them.
std::optional<SessionResult> StitchedBy(CaptureSession& session,
                                        const std::vector<cv::Mat>& captures) {
  for (const cv::Mat& capture : captures) {
    session.Add(capture.clone());
  }
  return session.Stitch(nullptr);
}

py::object StitchedBy(const py::object& session, const std::vector<py::array>& captures) {
  for (const py::array& capture : captures) {
    session.attr("add")(capture);
  }
  return session.attr("result")();
}

py::object PythonSession() {
  using namespace py::literals;
  return Package().attr("Session")("threads"_a = 1);
}

std::vector<py::array> Arrays(const benchmark::State& state) {
  Package();
  const std::vector<cv::Mat> captures = Captures(state);
  std::vector<py::array> arrays(captures.size());
  std::transform(captures.begin(), captures.end(), arrays.begin(), ArrayOf);
  return arrays;
}

void BM_WholeRun_Cpp(benchmark::State& state) {
  const std::vector<cv::Mat> captures = Captures(state);
  for (auto _ : state) {
    CaptureSession session({});
    const auto result = StitchedBy(session, captures);
    const StitchedPicture& picture = *result->parts.front();
    benchmark::DoNotOptimize(picture.Area(cv::Rect({}, picture.Size())));
  }
}

void BM_WholeRun_Python(benchmark::State& state) {
  const std::vector<py::array> captures = Arrays(state);
  for (auto _ : state) {
    benchmark::DoNotOptimize(StitchedBy(PythonSession(), captures).attr("picture"));
  }
}

BENCHMARK(BM_WholeRun_Cpp)
    ->Name("BM_WholeRun/reference")
    ->Apply(Sizes)
    ->MeasureProcessCPUTime()
    ->UseRealTime();
BENCHMARK(BM_WholeRun_Python)
    ->Name("BM_WholeRun/python")
    ->Apply(Sizes)
    ->MeasureProcessCPUTime()
    ->UseRealTime();

/// The smallest call there is.
void BM_OnePixel_Cpp(benchmark::State& state) {
  CaptureSession session({});
  const auto result = StitchedBy(session, Captures(state));
  for (auto _ : state) {
    benchmark::DoNotOptimize(result->parts.front()->Area({5, 5, 1, 1}));
  }
}

void BM_OnePixel_Python(benchmark::State& state) {
  const py::object result = StitchedBy(PythonSession(), Arrays(state));
  const py::object area = result.attr("parts")[py::int_(0)].attr("area");
  for (auto _ : state) {
    benchmark::DoNotOptimize(area(5, 5, 1, 1));
  }
}

BENCHMARK(BM_OnePixel_Cpp)
    ->Name("BM_OnePixel/reference")
    ->Args({640, 480})
    ->MeasureProcessCPUTime()
    ->UseRealTime();
BENCHMARK(BM_OnePixel_Python)
    ->Name("BM_OnePixel/python")
    ->Args({640, 480})
    ->MeasureProcessCPUTime()
    ->UseRealTime();

}  // namespace
}  // namespace ScrollingCapture
