#pragma once

#include <string>

namespace ScrollingCapture::Program {

/// The desktop's clipboard, by way of the tool that is installed for it.
class Clipboard {
 public:
  /// Finds the tool. Throws BadInput when there is none, naming those that would do.
  Clipboard();

  /// Puts an image file there. Throws Failed.
  void Put(const std::string& path) const;

 private:
  bool isWayland;
};

}  // namespace ScrollingCapture::Program
