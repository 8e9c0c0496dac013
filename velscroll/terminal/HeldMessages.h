#pragma once

#include <mutex>
#include <string>
#include <vector>

#include <VelScrollingCapture/core/Messages.h>

namespace ScrollingCapture::Program {

/// Keeps what the library says while it lives, instead of letting it onto the standard streams: the
/// program has lines of its own for what goes wrong. Any number of threads may say something.
class HeldMessages {
 public:
  HeldMessages();
  HeldMessages(const HeldMessages&) = delete;
  HeldMessages& operator=(const HeldMessages&) = delete;
  ~HeldMessages();

  /// What was said so far, line by line.
  std::vector<std::string> Lines() const;

 private:
  MessageHandler before;
  mutable std::mutex mutex;
  std::vector<std::string> lines;
};

}  // namespace ScrollingCapture::Program
