#include "ProgramProcess.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <unistd.h>

#include <sys/wait.h>

namespace ScrollingCapture::Testing {
namespace {

constexpr int NotStarted = 127;
constexpr mode_t Private = 0600;

std::string ContentOf(const std::string& path) {
  std::ostringstream content;
  content << std::ifstream(path, std::ios::binary).rdbuf();
  return content.str();
}

void Limit(int resource, const std::optional<rlim_t>& value) {
  if (value) {
    const rlimit limit = {*value, *value};
    setrlimit(static_cast<__rlimit_resource_t>(resource), &limit);
  }
}

void Redirect(int number, const std::string& path) {
  const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, Private);
  dup2(file, number);
  close(file);
}

/// As in a pipe to a program that has read enough.
void RedirectToNobody(int number) {
  std::array<int, 2> ends = {};
  if (pipe(ends.data()) == 0) {
    dup2(ends[1], number);
    close(ends[0]);
    close(ends[1]);
  }
}

/// Makes this process the program; returns only on failure.
void Become(const std::vector<std::string>& arguments, const ProgramSetting& setting) {
  std::signal(SIGINT, setting.ignoresInterrupt ? SIG_IGN : SIG_DFL);
  std::signal(SIGTERM, SIG_DFL);
  std::signal(SIGHUP, SIG_DFL);
  std::signal(SIGPIPE, SIG_DFL);
  Limit(RLIMIT_FSIZE, setting.fileSizeLimit);
  Limit(RLIMIT_AS, setting.memoryLimit);
  std::vector<std::string> words = {VELSCROLL_PROGRAM};
  words.insert(words.end(), arguments.begin(), arguments.end());
  std::vector<char*> pointers(words.size());
  std::transform(words.begin(), words.end(), pointers.begin(),
                 [](std::string& word) { return word.data(); });
  pointers.push_back(nullptr);
  if (setting.folder.empty() || chdir(setting.folder.c_str()) == 0) {
    execv(VELSCROLL_PROGRAM, pointers.data());
  }
}

/// Makes a terminal the one that this process is controlled by.
void BeControlledBy(const std::string& terminal) {
  setsid();
  const int keys = open(terminal.c_str(), O_RDWR);
  dup2(keys, STDIN_FILENO);
  close(keys);
}

int OpenTerminal() {
  const int terminal = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
  if (terminal < 0 || grantpt(terminal) != 0 || unlockpt(terminal) != 0) {
    throw std::runtime_error("Could not make a terminal.");
  }
  return terminal;
}

}  // namespace

ProgramProcess::ProgramProcess(const std::vector<std::string>& arguments,
                               const ProgramSetting& setting) {
  std::string errorPath = outputs.Prefix() + "error";
  if (setting.hasTerminal) {
    terminal = OpenTerminal();
    errorPath = ptsname(terminal);
  }
  process = fork();
  if (process == 0) {
    if (setting.isControlled) {
      BeControlledBy(errorPath);
    }
    Redirect(STDOUT_FILENO, outputs.Prefix() + "output");
    if (setting.hasNoReader) {
      RedirectToNobody(STDOUT_FILENO);
    }
    Redirect(STDERR_FILENO, errorPath);
    Become(arguments, setting);
    std::_Exit(NotStarted);
  }
}

ProgramProcess::~ProgramProcess() {
  if (process > 0) {
    Signal(SIGKILL);
    waitpid(process, nullptr, 0);
  }
  if (terminal >= 0) {
    close(terminal);
  }
}

void ProgramProcess::Signal(int signal) const { kill(process, signal); }

void ProgramProcess::Type(const std::string& text) const {
  if (write(terminal, text.data(), text.size()) != static_cast<ssize_t>(text.size())) {
    throw std::runtime_error("Could not type.");
  }
}

bool ProgramProcess::WaitForOnTerminal(const std::string& text) {
  while (terminalText.find(text) == std::string::npos) {
    if (!ReadTerminal()) {
      return false;
    }
  }
  return true;
}

ProgramResult ProgramProcess::Wait() {
  while (terminal >= 0 && ReadTerminal()) {
  }
  int status = 0;
  waitpid(process, &status, 0);
  process = -1;
  ProgramResult result;
  constexpr int SignalOffset = 128;
  result.status = WIFEXITED(status) ? WEXITSTATUS(status) : SignalOffset + WTERMSIG(status);
  result.standardOutput = ContentOf(outputs.Prefix() + "output");
  result.standardError = terminal >= 0 ? terminalText : ContentOf(outputs.Prefix() + "error");
  return result;
}

/// @return false when the program has closed the terminal
bool ProgramProcess::ReadTerminal() {
  std::array<char, 4096> piece = {};
  const ssize_t got = read(terminal, piece.data(), piece.size());
  if (got > 0) {
    terminalText.append(piece.data(), static_cast<size_t>(got));
  }
  return got > 0;
}

}  // namespace ScrollingCapture::Testing
