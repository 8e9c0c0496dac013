#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace ScrollingCapture::Program {

/// Where the bytes of a file go. One thread at a time.
class OutputSink {
 public:
  OutputSink() = default;
  OutputSink(const OutputSink&) = delete;
  OutputSink& operator=(const OutputSink&) = delete;
  virtual ~OutputSink() = default;

  /// Writes at the end. Throws Failed when the disk is full or fails, and Cancelled when the user
  /// stops the work.
  void Append(const void* bytes, size_t length) { WriteAt(end, bytes, length); }

  /// Writes at a distance from the start, which may be beyond the end: until something is written
  /// there, the bytes between are zeros. Throws as Append does.
  void WriteAt(std::uint64_t offset, const void* bytes, size_t length) {
    Store(offset, bytes, length);
    end = std::max(end, offset + length);
  }

  /// How many bytes the file has so far.
  std::uint64_t Size() const { return end; }

 private:
  virtual void Store(std::uint64_t offset, const void* bytes, size_t length) = 0;

  std::uint64_t end = 0;
};

}  // namespace ScrollingCapture::Program
