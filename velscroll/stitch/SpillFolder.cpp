#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include <velscroll/stitch/SpillFolder.h>
#include <velscroll/terminal/Failure.h>

namespace ScrollingCapture::Program {
namespace {

namespace fs = std::filesystem;

/// The folder that exists at the moment; the end of the process must be able to find it.
std::string currentFolder;

std::string TemporaryFolder() {
  std::error_code error;
  const fs::path folder = fs::temp_directory_path(error);
  return error ? "/tmp" : folder.string();
}

}  // namespace

SpillFolder::SpillFolder(const std::string& parent) {
  const std::string base = parent.empty() ? TemporaryFolder() : parent;
  std::string name = base + "/velscroll-XXXXXX";
  if (::mkdtemp(name.data()) == nullptr) {
    throw BadInput("cannot make a folder for spill files in " + Quoted(base) + ": " +
                   SystemMessage(errno) + "; name a writable folder with --spill-folder");
  }
  currentFolder = name;
}

SpillFolder::~SpillFolder() { RemoveCurrent(); }

std::string SpillFolder::Path() const { return currentFolder + "/"; }

void SpillFolder::RemoveCurrent() {
  if (!currentFolder.empty()) {
    std::error_code ignored;
    fs::remove_all(currentFolder, ignored);
    currentFolder.clear();
  }
}

}  // namespace ScrollingCapture::Program
