#pragma once

#include <velscroll/files/FileDescriptor.h>

namespace ScrollingCapture::Program {

/// Sends everything that is written to the process's standard error to nowhere while it lives:
/// image decoders comment on damaged files there, on lines of their own. One at a time, and only
/// while one thread runs.
class Silence {
 public:
  Silence();
  Silence(const Silence&) = delete;
  Silence& operator=(const Silence&) = delete;
  ~Silence();

 private:
  FileDescriptor original;
};

}  // namespace ScrollingCapture::Program
