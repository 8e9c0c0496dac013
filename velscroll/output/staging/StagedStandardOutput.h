#pragma once

#include <string>

#include <velscroll/output/staging/HiddenFile.h>
#include <velscroll/output/staging/StagedOutput.h>

namespace ScrollingCapture::Program {

/// Standard output, which gets everything at once when all has been written: whoever reads it never
/// takes a part for the whole. Until then the bytes wait in a file in the system's temporary
/// folder.
class StagedStandardOutput : public StagedOutput {
 public:
  /// What stands for standard output on the command line.
  static constexpr const char* Argument = "-";

  /// Throws BadInput when standard output is a terminal, or the temporary folder cannot be written
  /// to.
  /// @param content what is going to be written, for messages: "the image"
  explicit StagedStandardOutput(const std::string& content);

  const std::string& Name() const override { return name; }
  void Close() override {}
  void Commit() override;

 private:
  void Store(std::uint64_t offset, const void* bytes, size_t length) override;
  size_t Read(std::uint64_t offset, void* bytes, size_t length) const;

  const std::string name = Argument;
  const std::string folder;
  HiddenFile waiting;
};

}  // namespace ScrollingCapture::Program
