#pragma once

#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include <VelScrollingCapture/core/Messages.h>

namespace ScrollingCapture::Testing {

/// Takes the library's messages while it lives, as a host does that shows them itself.
class MessageCapture {
 public:
  MessageCapture()
      : previous(SetMessageHandler([this](MessageKind kind, const std::string& text) {
          const std::lock_guard<std::mutex> lock(mutex);
          messages.emplace_back(kind, text);
        })) {}
  MessageCapture(const MessageCapture&) = delete;
  MessageCapture& operator=(const MessageCapture&) = delete;
  ~MessageCapture() { SetMessageHandler(std::move(previous)); }

  /// In the order in which they came. Ask when no other thread is inside the library.
  const std::vector<std::pair<MessageKind, std::string>>& Messages() const { return messages; }

 private:
  std::mutex mutex;
  std::vector<std::pair<MessageKind, std::string>> messages;
  MessageHandler previous;
};

}  // namespace ScrollingCapture::Testing
