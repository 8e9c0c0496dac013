#include <algorithm>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <spawn.h>
#include <sstream>
#include <system_error>
#include <unistd.h>
#include <vector>

#include <sys/wait.h>
#include <velscroll/output/PictureFormat.h>
#include <velscroll/record/Clipboard.h>
#include <velscroll/terminal/Failure.h>

namespace ScrollingCapture::Program {
namespace {

bool IsSet(const char* variable) {
  const char* const value = std::getenv(variable);
  return value != nullptr && *value != '\0';
}

bool IsInstalled(const std::string& tool) {
  const char* const all = std::getenv("PATH");
  std::istringstream folders(all == nullptr ? "" : all);
  for (std::string folder; std::getline(folders, folder, ':');) {
    const std::string path = folder.append("/").append(tool);
    if (::access(path.c_str(), X_OK) == 0) {
      return true;
    }
  }
  return false;
}

std::string MediaTypeOf(const std::string& path) {
  switch (PictureFormatOf(path).kind) {
    case PictureFormat::Jpeg:
      return "image/jpeg";
    case PictureFormat::Tiff:
      return "image/tiff";
    case PictureFormat::Bmp:
      return "image/bmp";
    case PictureFormat::WebP:
      return "image/webp";
    default:
      return "image/png";
  }
}

/// Runs a program that reads a file and says nothing.
/// @return whether it succeeded
bool Feed(std::vector<std::string> words, const std::string& file) {
  std::vector<char*> pointers(words.size());
  std::transform(words.begin(), words.end(), pointers.begin(),
                 [](std::string& word) { return word.data(); });
  pointers.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, file.c_str(), O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  pid_t process = 0;
  const int error =
      ::posix_spawnp(&process, pointers.front(), &actions, nullptr, pointers.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  int status = 0;
  return error == 0 && ::waitpid(process, &status, 0) == process && WIFEXITED(status) &&
         WEXITSTATUS(status) == 0;
}

}  // namespace

Clipboard::Clipboard() : isWayland(IsSet("WAYLAND_DISPLAY") && IsInstalled("wl-copy")) {
  if (!isWayland && !IsInstalled("xclip")) {
    throw BadInput(IsSet("WAYLAND_DISPLAY")
                       ? "--clipboard needs wl-copy, of the package wl-clipboard, or xclip; "
                         "install one"
                       : "--clipboard needs xclip; install the package of that name");
  }
}

void Clipboard::Put(const std::string& path) const {
  const std::string type = MediaTypeOf(path);
  const std::vector<std::string> words =
      isWayland ? std::vector<std::string>{"wl-copy", "--type", type}
                : std::vector<std::string>{"xclip", "-selection", "clipboard", "-t", type, "-in"};
  if (!Feed(words, path)) {
    throw Failed(Quoted(path) + " was written, but " + words.front() +
                 " could not put it on the clipboard");
  }
}

}  // namespace ScrollingCapture::Program
