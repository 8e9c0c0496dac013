#include <benchmark/benchmark.h>
#include <opencv2/core.hpp>

/// OpenCV works on the calling thread alone, so that both sides of a ratio use one core; the
/// threads that the library itself starts are not affected.
int main(int argc, char** argv) {
  cv::setNumThreads(1);
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
    return 1;
  }
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
