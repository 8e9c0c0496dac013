#pragma once

#include <unistd.h>

namespace ScrollingCapture::Program {

/// Owns an open file of the operating system and closes it.
class FileDescriptor {
 public:
  explicit FileDescriptor(int number) : number(number) {}
  FileDescriptor(const FileDescriptor&) = delete;
  FileDescriptor& operator=(const FileDescriptor&) = delete;
  ~FileDescriptor() { Close(); }

  bool IsOpen() const { return number >= 0; }
  int Number() const { return number; }

  /// @return false when the system reports an error, with errno set; also when nothing is open
  bool Close() {
    const int closing = number;
    number = -1;
    return closing >= 0 && ::close(closing) == 0;
  }

 private:
  int number;
};

}  // namespace ScrollingCapture::Program
