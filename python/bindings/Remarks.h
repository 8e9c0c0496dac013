#pragma once

#include <string>
#include <vector>

namespace ScrollingCapture::Python {

/// Keeps the library's messages off the standard streams for good, which belong to whoever uses the
/// module.
void TakeMessages();

/// What the library says on this thread while it lives. One at a time on a thread.
class Remarks {
 public:
  Remarks();
  Remarks(const Remarks&) = delete;
  Remarks& operator=(const Remarks&) = delete;
  ~Remarks();

  const std::vector<std::string>& Lines() const { return lines; }

 private:
  std::vector<std::string> lines;
};

}  // namespace ScrollingCapture::Python
