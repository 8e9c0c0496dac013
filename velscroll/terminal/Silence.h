#pragma once

namespace ScrollingCapture::Program {

/// Says that the process's standard error is the program's own. Without this a Silence does
/// nothing: in the process of a host, other threads may be writing there. Call it before there are
/// threads.
void OwnStandardError();

/// Sends everything that libraries write to the process's standard error to nowhere while it lives:
/// image decoders comment on damaged files there, on lines of their own. Any number of threads may
/// ask for silence at once; it lasts until the last one has done. What TellUser writes gets
/// through.
class Silence {
 public:
  Silence();
  Silence(const Silence&) = delete;
  Silence& operator=(const Silence&) = delete;
  ~Silence();
};

/// Writes to standard error, past streams that may be held back and past any silence. What cannot
/// be written is dropped. Safe where no memory can be allocated.
void TellUser(const char* text, unsigned long length);

/// Whether standard error is a terminal.
bool UserHasTerminal();

}  // namespace ScrollingCapture::Program
