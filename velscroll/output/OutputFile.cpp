#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <unistd.h>

#include <sys/stat.h>
#include <sys/types.h>
#include <velscroll/files/FileDescriptor.h>
#include <velscroll/output/OutputFile.h>
#include <velscroll/terminal/Failure.h>
#include <velscroll/terminal/Interruption.h>

namespace ScrollingCapture::Program {
namespace {

namespace fs = std::filesystem;

constexpr size_t PieceSize = size_t{1} << 20U;

std::string ResolveLinks(const std::string& path) {
  std::error_code error;
  const fs::path resolved = fs::canonical(path, error);
  return error ? path : resolved.string();
}

std::string FolderOf(const std::string& path) {
  const std::string parent = fs::path(path).parent_path().string();
  return parent.empty() ? "." : parent;
}

/// Makes a new file in the folder that nobody else can have opened.
/// @param name receives the path
/// @return the open file, or -1 with errno set
int MakeHiddenFile(const std::string& folder, std::string& name) {
  name = folder + "/.velscroll-XXXXXX";
  return ::mkstemp(name.data());
}

void RequireFolder(const std::string& path, const std::string& folder) {
  std::error_code error;
  if (!fs::is_directory(folder, error)) {
    throw BadInput("cannot write " + Quoted(path) + ": there is no folder " + Quoted(folder) +
                   "; make it or choose another");
  }
}

void RequireReplaceable(const std::string& path, const std::string& target) {
  std::error_code error;
  const fs::file_status status = fs::status(target, error);
  if (fs::is_directory(status)) {
    throw BadInput("cannot write " + Quoted(path) + ": it is a folder; name a file in it");
  }
  if (fs::exists(status) && !fs::is_regular_file(status)) {
    throw BadInput("cannot write " + Quoted(path) + ": it is not a regular file; name another");
  }
  if (fs::exists(status) && ::access(target.c_str(), W_OK) != 0) {
    throw BadInput("cannot write " + Quoted(path) + ": " + SystemMessage(errno) +
                   "; make it writable or choose another name");
  }
}

void RequireWritableFolder(const std::string& path, const std::string& folder) {
  std::string name;
  const FileDescriptor file(MakeHiddenFile(folder, name));
  if (!file.IsOpen()) {
    throw BadInput("cannot write " + Quoted(path) + " into the folder " + Quoted(folder) + ": " +
                   SystemMessage(errno) + "; choose a folder that you may write to");
  }
  ::unlink(name.c_str());
}

/// The permissions of the file that is to be replaced, or else what the user's mask leaves.
mode_t PermissionsFor(const std::string& target) {
  constexpr mode_t EveryPermission = 07777;
  constexpr mode_t ReadAndWrite = 0666;
  struct stat status = {};
  if (::stat(target.c_str(), &status) == 0) {
    return status.st_mode & EveryPermission;
  }
  const mode_t mask = ::umask(0);
  ::umask(mask);
  return ReadAndWrite & ~mask;
}

/// @return false when the system reports an error, with errno set
bool WriteAll(int file, const void* content, size_t length) {
  const auto* position = static_cast<const unsigned char*>(content);
  while (length > 0) {
    StopIfInterrupted();
    const ssize_t written = ::write(file, position, std::min(length, PieceSize));
    if (written < 0 && errno != EINTR) {
      return false;
    }
    if (written > 0) {
      position += written;
      length -= static_cast<size_t>(written);
    }
  }
  return true;
}

}  // namespace

OutputFile::OutputFile(const std::string& path)
    : path(path), target(ResolveLinks(path)), folder(FolderOf(target)) {
  RequireFolder(path, folder);
  RequireReplaceable(path, target);
  RequireWritableFolder(path, folder);
}

OutputFile::~OutputFile() {
  if (!hidden.empty()) {
    ::unlink(hidden.c_str());
  }
}

void OutputFile::Stage(const void* content, size_t length) {
  std::string name;
  FileDescriptor file(MakeHiddenFile(folder, name));
  if (file.IsOpen()) {
    hidden = name;
  }
  const bool staged = file.IsOpen() && ::fchmod(file.Number(), PermissionsFor(target)) == 0 &&
                      WriteAll(file.Number(), content, length) && ::fsync(file.Number()) == 0 &&
                      file.Close();
  if (!staged) {
    throw Failed("cannot write " + Quoted(path) + ": " + SystemMessage(errno) +
                 "; make room or choose another folder");
  }
}

void OutputFile::Commit() {
  if (std::rename(hidden.c_str(), target.c_str()) != 0) {
    throw Failed("cannot write " + Quoted(path) + ": " + SystemMessage(errno) +
                 "; choose another name");
  }
  hidden.clear();
}

}  // namespace ScrollingCapture::Program
