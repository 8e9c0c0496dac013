#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <system_error>
#include <unistd.h>

#include <sys/stat.h>
#include <velscroll/output/staging/HiddenFile.h>
#include <velscroll/terminal/Interruption.h>

namespace ScrollingCapture::Program {
namespace {

constexpr size_t PieceSize = size_t{1} << 20U;

[[noreturn]] void ThrowSystemError() { throw std::system_error(errno, std::generic_category()); }

void Require(bool succeeded) {
  if (!succeeded) {
    ThrowSystemError();
  }
}

}  // namespace

HiddenFile::HiddenFile(const std::string& folder)
    : name(folder + "/.velscroll-XXXXXX"), file(::mkstemp(name.data())) {
  Require(file.IsOpen());
}

HiddenFile::~HiddenFile() {
  if (!name.empty()) {
    ::unlink(name.c_str());
  }
}

void HiddenFile::WriteAt(std::uint64_t offset, const void* bytes, size_t length) {
  const auto* position = static_cast<const unsigned char*>(bytes);
  while (length > 0) {
    StopIfInterrupted();
    const ssize_t written =
        ::pwrite(file.Number(), position, std::min(length, PieceSize), static_cast<off_t>(offset));
    Require(written >= 0 || errno == EINTR);
    if (written > 0) {
      position += written;
      offset += static_cast<std::uint64_t>(written);
      length -= static_cast<size_t>(written);
    }
  }
}

size_t HiddenFile::ReadAt(std::uint64_t offset, void* bytes, size_t length) const {
  ssize_t got = -1;
  do {
    got = ::pread(file.Number(), bytes, length, static_cast<off_t>(offset));
  } while (got < 0 && errno == EINTR);
  Require(got >= 0);
  return static_cast<size_t>(got);
}

// A file is asked, since the mask cannot be read without being changed for all threads of the
// process.
mode_t HiddenFile::PermissionsOfNewFiles() const {
  constexpr mode_t ReadAndWrite = 0666;
  const std::string probe = name + "~";
  const FileDescriptor opened(
      ::open(probe.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, ReadAndWrite));
  Require(opened.IsOpen());
  ::unlink(probe.c_str());
  struct stat status = {};
  Require(::fstat(opened.Number(), &status) == 0);
  return status.st_mode & ReadAndWrite;
}

void HiddenFile::Close(mode_t permissions) {
  Require(::fchmod(file.Number(), permissions) == 0 && ::fsync(file.Number()) == 0 && file.Close());
}

void HiddenFile::Rename(const std::string& target) {
  Require(std::rename(name.c_str(), target.c_str()) == 0);
  name.clear();
}

}  // namespace ScrollingCapture::Program
