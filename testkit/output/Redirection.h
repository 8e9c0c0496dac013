#pragma once

#include <cstdio>
#include <pty.h>
#include <stdexcept>
#include <unistd.h>

#include <velscroll/files/FileDescriptor.h>

namespace ScrollingCapture::Testing {

/// Sends standard output elsewhere while it lives.
class Redirection {
 public:
  explicit Redirection(int target) : original(::dup(STDOUT_FILENO)) {
    std::fflush(stdout);
    ::dup2(target, STDOUT_FILENO);
  }
  Redirection(const Redirection&) = delete;
  Redirection& operator=(const Redirection&) = delete;
  ~Redirection() {
    std::fflush(stdout);
    ::dup2(original.Number(), STDOUT_FILENO);
  }

 private:
  Program::FileDescriptor original;
};

/// Lets standard output be a terminal while it lives.
class TerminalOutput {
 public:
  TerminalOutput() : TerminalOutput(Open()) {}

 private:
  struct Ends {
    int terminal = -1;
    int program = -1;
  };

  explicit TerminalOutput(const Ends& ends)
      : terminal(ends.terminal), program(ends.program), redirection(ends.program) {}

  static Ends Open() {
    Ends ends;
    if (::openpty(&ends.terminal, &ends.program, nullptr, nullptr, nullptr) != 0) {
      throw std::runtime_error("Could not open a terminal.");
    }
    return ends;
  }

  Program::FileDescriptor terminal;
  Program::FileDescriptor program;
  Redirection redirection;
};

}  // namespace ScrollingCapture::Testing
