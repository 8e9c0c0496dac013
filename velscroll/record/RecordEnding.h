#pragma once

#include <optional>
#include <string>

#include <live/x11/XStopKey.h>

namespace ScrollingCapture::Program {

/// What ends a recording so that it is saved: Enter in the terminal, a key that is pressed
/// anywhere, Ctrl-C, a termination request, a closed terminal.
class RecordEnding {
 public:
  /// Listens from now on. Throws CaptureFailure when the key is unknown or taken.
  /// @param stopKey empty: none
  explicit RecordEnding(const std::string& stopKey);

  /// Whether one of these has happened.
  bool IsAsked();

 private:
  std::optional<Live::XStopKey> stopKey;
};

}  // namespace ScrollingCapture::Program
