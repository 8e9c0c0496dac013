#include "XServer.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <stdexcept>
#include <unistd.h>

#include <sys/wait.h>

namespace ScrollingCapture::Testing {
namespace {

[[noreturn]] void Become(std::vector<std::string> words) {
  std::vector<char*> pointers(words.size());
  std::transform(words.begin(), words.end(), pointers.begin(),
                 [](std::string& word) { return word.data(); });
  pointers.push_back(nullptr);
  const int nowhere = open("/dev/null", O_RDWR);
  dup2(nowhere, STDOUT_FILENO);
  dup2(nowhere, STDERR_FILENO);
  execvp(pointers.front(), pointers.data());
  constexpr int NotStarted = 127;
  std::_Exit(NotStarted);
}

/// The display's number, which the server writes when it is ready.
std::string ReadNumber(int pipe) {
  std::string number;
  for (char digit = 0; read(pipe, &digit, 1) == 1 && digit != '\n';) {
    number += digit;
  }
  return number;
}

}  // namespace

XServer::XServer(const std::vector<std::string>& options) {
  std::array<int, 2> ends = {};
  if (pipe(ends.data()) != 0) {
    throw std::runtime_error("Could not make a pipe.");
  }
  process = fork();
  if (process == 0) {
    close(ends[0]);
    std::vector<std::string> words = {"Xvfb", "-displayfd", std::to_string(ends[1]), "-nolisten",
                                      "tcp"};
    words.insert(words.end(), options.begin(), options.end());
    Become(words);
  }
  close(ends[1]);
  display = ":" + ReadNumber(ends[0]);
  close(ends[0]);
  if (display == ":") {
    throw std::runtime_error("Could not start Xvfb.");
  }
  setenv("DISPLAY", display.c_str(), 1);
}

XServer::~XServer() { End(SIGTERM); }

void XServer::Kill() {
  End(SIGKILL);
  const std::string number = display.substr(1);
  std::remove(("/tmp/.X" + number + "-lock").c_str());
  std::remove(("/tmp/.X11-unix/X" + number).c_str());
}

void XServer::End(int signal) {
  if (process > 0) {
    kill(process, signal);
    waitpid(process, nullptr, 0);
    process = -1;
  }
}

void XServer::UseScreen(int number) const {
  setenv("DISPLAY", (display + "." + std::to_string(number)).c_str(), 1);
}

}  // namespace ScrollingCapture::Testing
