#include "FailingNew.h"

#include <cstdlib>
#include <new>
#include <utility>

#include <VelScrollingCapture/core/Export.h>

namespace ScrollingCapture::Testing {
namespace {

constexpr size_t Never = ~size_t{0};

/// How many allocations of this thread pass before one fails.
thread_local size_t passing = Never;
thread_local bool hasFailed = false;

void* Allocate(size_t size) noexcept {
  if (passing != Never && passing-- == 0) {
    passing = Never;
    hasFailed = true;
    return nullptr;
  }
  return std::malloc(size == 0 ? 1 : size);
}

}  // namespace

FailingNew::FailingNew(size_t passing) {
  Testing::passing = passing;
  hasFailed = false;
}

FailingNew::~FailingNew() { passing = Never; }

bool FailingNew::HasFailed() { return hasFailed; }

WorkingNew::WorkingNew() : suspended(std::exchange(passing, Never)) {}

WorkingNew::~WorkingNew() { passing = suspended; }

}  // namespace ScrollingCapture::Testing

// OpenCV forgets the pixels of a matrix whose administration it cannot allocate.
// NOLINTBEGIN(bugprone-reserved-identifier, readability-identifier-naming)
extern "C" VEL_EXPORT const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() {
  return "leak:cv::Mat::create\nleak:cv::_OutputArray::create";
}
// NOLINTEND(bugprone-reserved-identifier, readability-identifier-naming)

// The whole program's: the library's are among them.
void* operator new(size_t size) {
  void* const memory = ScrollingCapture::Testing::Allocate(size);
  if (memory == nullptr) {
    throw std::bad_alloc();
  }
  return memory;
}
void* operator new[](size_t size) { return operator new(size); }
void* operator new(size_t size, const std::nothrow_t& /*tag*/) noexcept {
  return ScrollingCapture::Testing::Allocate(size);
}
void* operator new[](size_t size, const std::nothrow_t& tag) noexcept {
  return operator new(size, tag);
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, size_t /*size*/) noexcept { std::free(memory); }
void operator delete[](void* memory, size_t /*size*/) noexcept { std::free(memory); }
void operator delete(void* memory, const std::nothrow_t& /*tag*/) noexcept { std::free(memory); }
void operator delete[](void* memory, const std::nothrow_t& /*tag*/) noexcept { std::free(memory); }
