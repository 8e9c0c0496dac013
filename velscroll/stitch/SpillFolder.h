#pragma once

#include <string>

namespace ScrollingCapture::Program {

/// A folder of the program's own for spill files: nobody else may look into it, and it goes with
/// this object, whatever it holds. One at a time.
class SpillFolder {
 public:
  /// Makes the folder. Throws BadInput when that is not possible.
  /// @param parent an existing folder; empty for the system's temporary folder
  explicit SpillFolder(const std::string& parent);

  SpillFolder(const SpillFolder&) = delete;
  SpillFolder& operator=(const SpillFolder&) = delete;
  ~SpillFolder();

  /// The folder's path, with the separator at its end.
  std::string Path() const;

  /// Removes the folder that exists at the moment, if any, for an end of the process at which no
  /// destructor runs.
  static void RemoveCurrent();
};

}  // namespace ScrollingCapture::Program
