#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <sys/types.h>
#include <velscroll/files/FileDescriptor.h>
#include <velscroll/input/FileContent.h>
#include <velscroll/terminal/Failure.h>
#include <velscroll/terminal/Interruption.h>

namespace ScrollingCapture::Program {
namespace {

constexpr size_t PieceSize = size_t{1} << 20U;

/// Returns when something can be read. The system interrupts only one thread's waiting, so each
/// looks for itself whether it is to go on.
void WaitForContent(const FileDescriptor& file) {
  constexpr int LongestWaitMilliseconds = 100;
  struct pollfd waiting = {file.Number(), POLLIN, 0};
  while (::poll(&waiting, 1, LongestWaitMilliseconds) == 0) {
    StopIfInterrupted();
  }
}

[[noreturn]] void Refuse(const std::string& path, int errorNumber) {
  StopIfInterrupted();
  throw BadInput("cannot read " + Quoted(path) + ": " + SystemMessage(errorNumber) +
                 "; check the name and the permissions");
}

}  // namespace

std::vector<unsigned char> ReadFile(const std::string& path) {
  const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
  if (!file.IsOpen()) {
    Refuse(path, errno);
  }
  std::vector<unsigned char> content;
  while (true) {
    const size_t length = content.size();
    content.resize(length + PieceSize);
    WaitForContent(file);
    const ssize_t got = ::read(file.Number(), content.data() + length, PieceSize);
    if (got < 0 && errno != EINTR && errno != EAGAIN) {
      Refuse(path, errno);
    }
    StopIfInterrupted();
    content.resize(length + static_cast<size_t>(got < 0 ? 0 : got));
    if (got == 0) {
      break;
    }
  }
  return content;
}

}  // namespace ScrollingCapture::Program
