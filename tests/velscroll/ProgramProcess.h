#pragma once

#include <optional>
#include <string>
#include <vector>

#include <sys/resource.h>
#include <sys/types.h>
#include <testkit/TemporaryFolder.h>

namespace ScrollingCapture::Testing {

/// What a program left behind when it ended.
struct ProgramResult {
  int status = -1;  ///< the exit status; 128 plus the signal's number when a signal ended it
  std::string standardOutput;
  std::string standardError;  ///< what reached the terminal, if it had one
};

/// The circumstances that a program is started in.
struct ProgramSetting {
  std::string folder;                   ///< the current folder
  bool hasTerminal = false;             ///< whether standard error is a terminal
  bool isControlled = false;            ///< whether that terminal is also where keys are typed
  bool hasNoReader = false;             ///< whether standard output is a pipe that nobody reads
  bool ignoresInterrupt = false;        ///< whether it inherits Ctrl-C as ignored
  std::optional<rlim_t> fileSizeLimit;  ///< in bytes; writing beyond it fails
  std::optional<rlim_t> memoryLimit;    ///< of the address space, in bytes
};

/// A running velscroll.
class ProgramProcess {
 public:
  ProgramProcess(const std::vector<std::string>& arguments, const ProgramSetting& setting);
  ProgramProcess(const ProgramProcess&) = delete;
  ProgramProcess& operator=(const ProgramProcess&) = delete;

  /// Ends the process if it still runs.
  ~ProgramProcess();

  void Signal(int signal) const;

  /// Types into the terminal.
  void Type(const std::string& text) const;

  /// Waits until the terminal shows the text, or the program has ended.
  /// @return whether it did
  bool WaitForOnTerminal(const std::string& text);

  ProgramResult Wait();

 private:
  bool ReadTerminal();

  TemporaryFolder outputs;
  int terminal = -1;
  std::string terminalText;
  pid_t process = -1;
};

}  // namespace ScrollingCapture::Testing
