#pragma once

#include <cstddef>
#include <string>

namespace ScrollingCapture::Program {

/// A file that comes into being as a whole, or not at all.
///
/// The content goes to a hidden file in the same folder, is flushed to the disk, and then takes the
/// place of the file that was there. Until then that one stays as it was; a hidden file that was
/// never committed is removed. A symbolic link stays one: what it points to is replaced. A replaced
/// file's permissions are kept.
class OutputFile {
 public:
  /// Makes sure that the file can be written. Throws BadInput when its folder is missing or not
  /// writable, when a folder or something else that is no file has its name, and when it is
  /// write-protected.
  explicit OutputFile(const std::string& path);

  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;
  ~OutputFile();

  /// Writes the content, whole, but not yet under its name. Throws Failed when the disk is full or
  /// fails, and Cancelled when the user stops the work.
  void Stage(const void* content, size_t length);

  /// Gives the staged content its name. Throws Failed.
  void Commit();

 private:
  std::string path;    ///< as the user calls it
  std::string target;  ///< with links resolved
  std::string folder;  ///< of the target
  std::string hidden;  ///< the staged file; empty when there is none
};

}  // namespace ScrollingCapture::Program
