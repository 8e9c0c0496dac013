#pragma once

#include <QString>
#include <functional>
#include <memory>
#include <optional>

#include <live/ICaptureSource.h>

namespace ScrollingCapture::Desktop {

/// How to record.
struct RecordingOptions {
  bool showsPointer = false;                             ///< whether the mouse pointer is drawn in
  std::optional<Live::ScrollDirection> scrollsByItself;  ///< nothing: the user scrolls
};

/// Begins to capture what was chosen. Throws what tells the user why that is not possible.
using OpenSource = std::function<std::unique_ptr<Live::ICaptureSource>()>;

/// Lets the user choose what to capture, or knows it already. Called on any thread, on which it may
/// wait as long as it is told to go on. Throws as OpenSource does.
/// @return nothing when the user cancels
using PickSource =
    std::function<OpenSource(const RecordingOptions& options, const std::function<bool()>& goOn)>;

/// Whether a key has been pressed that ends a recording.
using KeyWasPressed = std::function<bool()>;

/// What there is of a platform.
struct Platform {
  PickSource pick;
  QString finishKey;  ///< the name of a key that is heard whichever window has the focus

  /// Listens for that key as long as what it returns lives. Throws when another program has it.
  std::function<KeyWasPressed()> listenForKey;
};

}  // namespace ScrollingCapture::Desktop
