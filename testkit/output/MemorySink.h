#pragma once

#include <cstring>
#include <limits>
#include <vector>

#include <velscroll/output/staging/OutputSink.h>
#include <velscroll/terminal/Failure.h>

namespace ScrollingCapture::Testing {

/// Keeps the bytes in memory; can fail like a disk that is full.
class MemorySink : public Program::OutputSink {
 public:
  /// @param passing how many calls succeed before every further one fails
  explicit MemorySink(size_t passing = std::numeric_limits<size_t>::max()) : passing(passing) {}

  const std::vector<unsigned char>& Bytes() const { return bytes; }

  /// How often something was to be written.
  size_t Calls() const { return calls; }

 private:
  void Store(std::uint64_t offset, const void* stored, size_t length) override {
    if (calls++ >= passing) {
      throw Program::Failed("the disk is full");
    }
    if (bytes.size() < offset + length) {
      bytes.resize(offset + length);
    }
    std::memcpy(bytes.data() + offset, stored, length);
  }

  std::vector<unsigned char> bytes;
  size_t passing;
  size_t calls = 0;
};

}  // namespace ScrollingCapture::Testing
