// Functions of this program that the dynamic linker prefers to those of the shared libraries, for
// calls from the library under test and from the C++ runtime as well.

#include "InterposedFunctions.h"

#include <cerrno>
#include <dlfcn.h>
#include <pthread.h>
#include <utility>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/core/Export.h>

namespace ScrollingCapture::Testing {
namespace {

/// The function of the shared libraries that one of this program stands in for.
template <typename Function>
Function* RealFunction(Function& standIn) {
  Dl_info symbol{};
  dladdr(reinterpret_cast<void*>(&standIn), &symbol);
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, symbol.dli_sname));
}

}  // namespace

Interposition& Interposed() {
  static Interposition interposition;
  return interposition;
}

ScopedInterposition::ScopedInterposition(Interposition interposition) {
  Interposed() = std::move(interposition);
}

ScopedInterposition::~ScopedInterposition() { Interposed() = {}; }

}  // namespace ScrollingCapture::Testing

using ScrollingCapture::Testing::Interposed;
using ScrollingCapture::Testing::RealFunction;

// The libraries' headers give the parameters other names.
// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name)
namespace cv {

VEL_EXPORT void dft(InputArray source, OutputArray destination, int flags, int nonzeroRows) {
  static const auto real = RealFunction(dft);
  const auto& fails = Interposed().transformFails;
  if (fails && fails(flags)) {
    destination.release();
    return;
  }
  real(source, destination, flags, nonzeroRows);
}

}  // namespace cv

extern "C" {

VEL_EXPORT int pthread_create(pthread_t* thread, const pthread_attr_t* attributes,
                              void* (*start)(void*), void* argument) noexcept {
  static const auto real = RealFunction(pthread_create);
  const auto& starts = Interposed().threadStarts;
  return starts && !starts() ? EAGAIN : real(thread, attributes, start, argument);
}

VEL_EXPORT int pthread_cond_wait(pthread_cond_t* condition, pthread_mutex_t* mutex) {
  static const auto real = RealFunction(pthread_cond_wait);
  const auto& beforeWait = Interposed().beforeWait;
  if (beforeWait) {
    beforeWait();
  }
  return real(condition, mutex);
}
}
// NOLINTEND(readability-inconsistent-declaration-parameter-name)
