#include <array>
#include <poll.h>
#include <unistd.h>

#include <velscroll/record/RecordEnding.h>
#include <velscroll/terminal/Interruption.h>

namespace ScrollingCapture::Program {
namespace {

/// A program in the background would be stopped by looking.
bool MayReadTerminal() {
  return ::isatty(STDIN_FILENO) == 1 && ::tcgetpgrp(STDIN_FILENO) == ::getpgrp();
}

bool EnterWasPressed() {
  pollfd input = {STDIN_FILENO, POLLIN, 0};
  if (!MayReadTerminal() || ::poll(&input, 1, 0) != 1 || (input.revents & POLLIN) == 0) {
    return false;
  }
  std::array<char, 256> line = {};
  return ::read(STDIN_FILENO, line.data(), line.size()) > 0;
}

}  // namespace

RecordEnding::RecordEnding(const std::string& key) {
  if (!key.empty()) {
    stopKey.emplace(key);
  }
  LetFirstSignalFinish();
}

bool RecordEnding::IsAsked() {
  return FinishRequested() || EnterWasPressed() || (stopKey && stopKey->WasPressed());
}

}  // namespace ScrollingCapture::Program
