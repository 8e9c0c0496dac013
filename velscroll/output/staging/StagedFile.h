#pragma once

#include <optional>
#include <string>

#include <velscroll/output/staging/HiddenFile.h>
#include <velscroll/output/staging/StagedOutput.h>

namespace ScrollingCapture::Program {

/// A file that comes into being as a whole, or not at all.
///
/// The content goes to a hidden file in the same folder, is flushed to the disk, and then takes the
/// place of the file that was there. Until then that one stays as it was; a hidden file that was
/// never committed is removed. A symbolic link stays one: what it points to is replaced. A replaced
/// file's permissions are kept.
class StagedFile : public StagedOutput {
 public:
  /// Makes sure that the file can be written. Throws BadInput when its folder is missing or not
  /// writable, when a folder or something else that is no file has its name, and when it is
  /// write-protected.
  explicit StagedFile(const std::string& path);

  const std::string& Name() const override { return path; }
  void Close() override;
  void Commit() override;

 private:
  void Store(std::uint64_t offset, const void* bytes, size_t length) override;

  /// Calls an operation of the hidden file, which is made when there is none yet.
  template <typename Operation>
  void OnHiddenFile(const Operation& operation, const char* advice);

  std::string path;    ///< as the user calls it
  std::string target;  ///< with links resolved
  std::string folder;  ///< of the target
  std::optional<HiddenFile> hidden;
};

}  // namespace ScrollingCapture::Program
