#include <cstdio>
#include <fcntl.h>
#include <iostream>
#include <mutex>
#include <unistd.h>

#include <sys/types.h>
#include <velscroll/files/FileDescriptor.h>
#include <velscroll/terminal/Silence.h>

namespace ScrollingCapture::Program {
namespace {

/// Standard error as the program was started with it.
const FileDescriptor& Original() {
  static const FileDescriptor original(::fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
  return original;
}

bool isOwn = false;
std::mutex mutex;
int silences = 0;

void SendStandardErrorTo(int target) {
  std::cerr.flush();
  std::fflush(stderr);
  ::dup2(target, STDERR_FILENO);
}

}  // namespace

void OwnStandardError() { isOwn = true; }

Silence::Silence() {
  const std::lock_guard<std::mutex> lock(mutex);
  if (++silences > 1 || !isOwn || !Original().IsOpen()) {
    return;
  }
  const FileDescriptor nowhere(::open("/dev/null", O_WRONLY | O_CLOEXEC));
  if (nowhere.IsOpen()) {
    SendStandardErrorTo(nowhere.Number());
  }
}

Silence::~Silence() {
  const std::lock_guard<std::mutex> lock(mutex);
  if (--silences == 0 && isOwn && Original().IsOpen()) {
    SendStandardErrorTo(Original().Number());
  }
}

void TellUser(const char* text, unsigned long length) {
  [[maybe_unused]] const ssize_t ignored = ::write(Original().Number(), text, length);
}

bool UserHasTerminal() { return ::isatty(Original().Number()) == 1; }

}  // namespace ScrollingCapture::Program
