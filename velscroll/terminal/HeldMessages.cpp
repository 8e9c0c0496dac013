#include <velscroll/terminal/HeldMessages.h>

namespace ScrollingCapture::Program {

HeldMessages::HeldMessages()
    : before(SetMessageHandler([this](MessageKind /*kind*/, const std::string& text) {
        const std::lock_guard<std::mutex> lock(mutex);
        lines.push_back(text);
      })) {}

HeldMessages::~HeldMessages() { SetMessageHandler(before); }

std::vector<std::string> HeldMessages::Lines() const {
  const std::lock_guard<std::mutex> lock(mutex);
  return lines;
}

}  // namespace ScrollingCapture::Program
