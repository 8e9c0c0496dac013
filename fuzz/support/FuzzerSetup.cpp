// What every fuzz target starts with.

#include <opencv2/core.hpp>
#include <opencv2/core/utils/logger.hpp>
#include <testkit/memory/CappedMemory.h>

namespace ScrollingCapture::Fuzzing {
namespace {

constexpr size_t MostMatrixBytes = size_t{64} << 20;

}  // namespace
}  // namespace ScrollingCapture::Fuzzing

// NOLINTBEGIN(bugprone-reserved-identifier, readability-identifier-naming)
extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
  using namespace ScrollingCapture::Fuzzing;
  static ScrollingCapture::Testing::CappedMemory allocator(MostMatrixBytes);
  cv::Mat::setDefaultAllocator(&allocator);
  // A target's runs depend on nothing but its input.
  cv::setNumThreads(1);
  cv::utils::logging::setLogLevel(cv::utils::logging::LOG_LEVEL_SILENT);
  return 0;
}
// NOLINTEND(bugprone-reserved-identifier, readability-identifier-naming)
