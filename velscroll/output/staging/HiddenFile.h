#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include <sys/types.h>
#include <velscroll/files/FileDescriptor.h>

namespace ScrollingCapture::Program {

/// A new file under a hidden name that nobody else can have opened. It is removed when this goes,
/// unless it was renamed. What the system refuses is thrown as std::system_error.
class HiddenFile {
 public:
  explicit HiddenFile(const std::string& folder);
  HiddenFile(const HiddenFile&) = delete;
  HiddenFile& operator=(const HiddenFile&) = delete;
  ~HiddenFile();

  /// Also throws Cancelled when the user stops the work.
  void WriteAt(std::uint64_t offset, const void* bytes, size_t length);

  /// @return how many bytes were read; 0 at the end
  size_t ReadAt(std::uint64_t offset, void* bytes, size_t length) const;

  /// What the system gives a new file in this folder.
  mode_t PermissionsOfNewFiles() const;

  /// Makes sure that everything is on the disk, and closes the file.
  void Close(mode_t permissions);

  /// Gives the file its name, in the place of a file that has it.
  void Rename(const std::string& target);

 private:
  std::string name;  ///< empty once the file has another
  FileDescriptor file;
};

}  // namespace ScrollingCapture::Program
