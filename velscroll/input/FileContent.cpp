#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

#include <sys/types.h>
#include <velscroll/files/FileDescriptor.h>
#include <velscroll/input/FileContent.h>
#include <velscroll/terminal/Failure.h>
#include <velscroll/terminal/Interruption.h>

namespace ScrollingCapture::Program {
namespace {

constexpr size_t PieceSize = size_t{1} << 20U;

[[noreturn]] void Refuse(const std::string& path, int errorNumber) {
  StopIfInterrupted();
  throw BadInput("cannot read " + Quoted(path) + ": " + SystemMessage(errorNumber) +
                 "; check the name and the permissions");
}

}  // namespace

std::vector<unsigned char> ReadFile(const std::string& path) {
  const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (!file.IsOpen()) {
    Refuse(path, errno);
  }
  std::vector<unsigned char> content;
  while (true) {
    const size_t length = content.size();
    content.resize(length + PieceSize);
    const ssize_t got = ::read(file.Number(), content.data() + length, PieceSize);
    if (got < 0 && errno != EINTR) {
      Refuse(path, errno);
    }
    StopIfInterrupted();
    content.resize(length + static_cast<size_t>(got < 0 ? 0 : got));
    if (got == 0) {
      break;
    }
  }
  if (content.empty()) {
    throw BadInput(Quoted(path) + " is empty; save the capture again or leave it out");
  }
  return content;
}

}  // namespace ScrollingCapture::Program
