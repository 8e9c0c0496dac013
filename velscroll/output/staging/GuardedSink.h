#pragma once

#include <cstddef>
#include <cstdint>
#include <exception>

#include <velscroll/output/staging/OutputSink.h>

namespace ScrollingCapture::Program {

/// A sink for libraries that exceptions must not pass through: it keeps what the sink throws until
/// the library has returned.
class GuardedSink {
 public:
  explicit GuardedSink(OutputSink& sink) : sink(sink) {}

  /// @return false when this or an earlier call has failed
  bool Append(const void* bytes, size_t length) noexcept {
    return WriteAt(sink.Size(), bytes, length);
  }

  /// @return false when this or an earlier call has failed
  bool WriteAt(std::uint64_t offset, const void* bytes, size_t length) noexcept {
    if (failure) {
      return false;
    }
    try {
      sink.WriteAt(offset, bytes, length);
    } catch (...) {
      failure = std::current_exception();
    }
    return !failure;
  }

  std::uint64_t Size() const { return sink.Size(); }

  /// Throws what the sink has thrown.
  void ThrowFailure() const {
    if (failure) {
      std::rethrow_exception(failure);
    }
  }

 private:
  OutputSink& sink;
  std::exception_ptr failure;
};

}  // namespace ScrollingCapture::Program
