#pragma once

#include <string>

#include <live/x11/XConnection.h>

namespace ScrollingCapture::Live {

/// A key that this program hears of wherever it is pressed, and no other program as long as this
/// lives.
class XStopKey {
 public:
  /// Throws CaptureFailure when there is no such key, or another program has taken it.
  /// @param name such as F12, Pause or Ctrl+Shift+s: names of X key symbols, after modifiers
  explicit XStopKey(const std::string& name);

  /// Whether it was pressed since the last call.
  bool WasPressed();

 private:
  const XConnection connection;  ///< its end gives the key back
};

}  // namespace ScrollingCapture::Live
