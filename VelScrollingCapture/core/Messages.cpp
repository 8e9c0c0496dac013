#include <iostream>
#include <memory>
#include <mutex>
#include <string_view>
#include <utility>

#include <VelScrollingCapture/core/Messages.h>
#include <VelScrollingCapture/core/internal/Messages.h>

namespace ScrollingCapture {
namespace {

/// Where the messages go.
class MessageSink {
 public:
  std::shared_ptr<MessageHandler> Exchange(std::shared_ptr<MessageHandler> next) {
    const std::lock_guard<std::mutex> lock(mutex);
    return std::exchange(handler, std::move(next));
  }

  /// Calls the handler unlocked, so that it may come back here.
  void Tell(MessageKind kind, std::string_view text, bool flush) {
    if (const std::shared_ptr<MessageHandler> current = CurrentHandler()) {
      (*current)(kind, std::string(text));
    } else {
      Write(kind == MessageKind::Error ? std::cerr : std::cout, text, flush);
    }
  }

 private:
  std::shared_ptr<MessageHandler> CurrentHandler() {
    const std::lock_guard<std::mutex> lock(mutex);
    return handler;
  }

  /// In one piece, so that no other writer's text gets between a line and its end.
  void Write(std::ostream& stream, std::string_view text, bool flush) {
    const std::string line = std::string(text) + '\n';
    const std::lock_guard<std::mutex> lock(mutex);
    stream.write(line.data(), static_cast<std::streamsize>(line.size()));
    if (flush) {
      stream.flush();
    }
  }

  std::mutex mutex;
  std::shared_ptr<MessageHandler> handler;
};

/// Never destroyed: static objects of the host may use the library until the process ends.
MessageSink& TheSink() {
  static auto* const sink = new MessageSink();
  return *sink;
}

void Tell(MessageKind kind, std::string_view text, bool flush) noexcept try {
  TheSink().Tell(kind, text, flush);
} catch (...) {  // A message must not end the work that it is about.
}

}  // namespace

MessageHandler SetMessageHandler(MessageHandler handler) {
  auto next = handler ? std::make_shared<MessageHandler>(std::move(handler)) : nullptr;
  const std::shared_ptr<MessageHandler> previous = TheSink().Exchange(std::move(next));
  return previous ? *previous : nullptr;
}

void TellError(std::string_view text) noexcept { Tell(MessageKind::Error, text, true); }

void TellErrorWithoutFlush(std::string_view text) noexcept {
  Tell(MessageKind::Error, text, false);
}

void TellInformation(std::string_view text) noexcept { Tell(MessageKind::Information, text, true); }

}  // namespace ScrollingCapture
