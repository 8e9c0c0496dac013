#include <cstdio>
#include <fcntl.h>
#include <iostream>
#include <unistd.h>

#include <velscroll/terminal/Silence.h>

namespace ScrollingCapture::Program {
namespace {

void FlushStandardError() {
  std::cerr.flush();
  std::fflush(stderr);
}

}  // namespace

Silence::Silence() : original(::fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1)) {
  const FileDescriptor nowhere(::open("/dev/null", O_WRONLY | O_CLOEXEC));
  if (original.IsOpen() && nowhere.IsOpen()) {
    FlushStandardError();
    ::dup2(nowhere.Number(), STDERR_FILENO);
  }
}

Silence::~Silence() {
  if (original.IsOpen()) {
    FlushStandardError();
    ::dup2(original.Number(), STDERR_FILENO);
  }
}

}  // namespace ScrollingCapture::Program
