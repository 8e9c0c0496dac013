#pragma once

#include <stdexcept>
#include <string>

namespace ScrollingCapture::Program {

/// What the program tells the shell.
enum ExitStatus : int {
  Done = 0,
  WorkFailed = 1,
  WrongUsage = 2,
  DoneInParts = 3,  ///< since captures are missing in between
  WasCancelled = 130,
};

/// Ends the program with one line on standard error: what was wrong with which file, and what to
/// do.
class Failure : public std::runtime_error {
 public:
  /// @param line may hold what the user has typed: control characters turn into question marks
  Failure(ExitStatus status, const std::string& line);

  ExitStatus Status() const { return status; }

 private:
  ExitStatus status;
};

/// The arguments or the files that they name cannot be used.
class BadInput : public Failure {
 public:
  explicit BadInput(const std::string& line) : Failure(WrongUsage, line) {}
};

/// The work could not be done, though there was nothing wrong with what was asked.
class Failed : public Failure {
 public:
  explicit Failed(const std::string& line) : Failure(WorkFailed, line) {}
};

/// The user stopped the work.
class Cancelled : public Failure {
 public:
  Cancelled() : Failure(WasCancelled, "cancelled, nothing was written") {}
};

/// A file name in quotation marks. Control characters are shown as question marks, so that a
/// message stays one line whatever the file is called.
std::string Quoted(const std::string& name);

/// What the system says of an error number, such as "Permission denied".
std::string SystemMessage(int errorNumber);

}  // namespace ScrollingCapture::Program
