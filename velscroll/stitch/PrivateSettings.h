#pragma once

#include <optional>

#include <velscroll/stitch/SpillFolder.h>

#include <VelScrollingCapture/session/SessionSettings.h>

namespace ScrollingCapture::Program {

/// A session's settings, with a folder of the program's own in the place of the spill folder. Has
/// to outlive the session.
class PrivateSettings {
 public:
  /// Throws BadInput when the folder cannot be made.
  explicit PrivateSettings(const SessionSettings& asked) : settings(asked) {
    if (asked.memoryLimit) {
      settings.spillFolder = folder.emplace(asked.spillFolder).Path();
    }
  }

  const SessionSettings& Get() const { return settings; }

 private:
  SessionSettings settings;
  std::optional<SpillFolder> folder;
};

}  // namespace ScrollingCapture::Program
