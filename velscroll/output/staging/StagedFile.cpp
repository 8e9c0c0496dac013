#include <cerrno>
#include <filesystem>
#include <system_error>
#include <unistd.h>

#include <sys/stat.h>
#include <velscroll/output/staging/StagedFile.h>
#include <velscroll/terminal/Failure.h>

namespace ScrollingCapture::Program {
namespace {

namespace fs = std::filesystem;

std::string ResolveLinks(const std::string& path) {
  std::error_code error;
  const fs::path resolved = fs::canonical(path, error);
  return error ? path : resolved.string();
}

std::string FolderOf(const std::string& path) {
  const std::string parent = fs::path(path).parent_path().string();
  return parent.empty() ? "." : parent;
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
  try {
    const HiddenFile attempt(folder);
  } catch (const std::system_error& error) {
    throw BadInput("cannot write " + Quoted(path) + " into the folder " + Quoted(folder) + ": " +
                   SystemMessage(error.code().value()) + "; choose a folder that you may write to");
  }
}

/// The permissions of the file that is to be replaced, or else those of any new file.
mode_t PermissionsFor(const std::string& target, const HiddenFile& file) {
  constexpr mode_t EveryPermission = 07777;
  struct stat status = {};
  if (::stat(target.c_str(), &status) == 0) {
    return status.st_mode & EveryPermission;
  }
  return file.PermissionsOfNewFiles();
}

}  // namespace

StagedFile::StagedFile(const std::string& path)
    : path(path), target(ResolveLinks(path)), folder(FolderOf(target)) {
  RequireFolder(path, folder);
  RequireReplaceable(path, target);
  RequireWritableFolder(path, folder);
}

template <typename Operation>
void StagedFile::OnHiddenFile(const Operation& operation, const char* advice) {
  try {
    if (!hidden) {
      hidden.emplace(folder);
    }
    operation(*hidden);
  } catch (const std::system_error& error) {
    throw Failed("cannot write " + Quoted(path) + ": " + SystemMessage(error.code().value()) +
                 advice);
  }
}

void StagedFile::Store(std::uint64_t offset, const void* bytes, size_t length) {
  OnHiddenFile([=](HiddenFile& file) { file.WriteAt(offset, bytes, length); },
               "; make room or choose another folder");
}

void StagedFile::Close() {
  OnHiddenFile([this](HiddenFile& file) { file.Close(PermissionsFor(target, file)); },
               "; make room or choose another folder");
}

void StagedFile::Commit() {
  OnHiddenFile([this](HiddenFile& file) { file.Rename(target); }, "; choose another name");
}

}  // namespace ScrollingCapture::Program
