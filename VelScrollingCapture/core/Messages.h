#pragma once

#include <functional>
#include <string>

#include <VelScrollingCapture/core/Export.h>

namespace ScrollingCapture {

/// What a message is about.
enum class MessageKind {
  Error,        ///< Something failed or was refused; by default for the standard error stream.
  Information,  ///< How the work went; by default for the standard output stream.
};

/// Takes a message: its kind, and its text without an end of line.
///
/// It is called on the thread that the message comes from, which may be a worker thread of a
/// detection, and by several threads at once. It may use the library, and set another handler. What
/// it throws is dropped: a message never changes how the work that it comes from goes on.
using MessageHandler = std::function<void(MessageKind kind, const std::string& text)>;

/// Hands all messages of the library in this process to `handler`, instead of to the standard
/// streams; without a handler (nullptr) they go to the streams again.
///
/// May be called at any time from any thread. A call that is under way goes on to its end; the
/// handler replaced lives until then. None is under way while no thread is inside the library.
/// @return the handler replaced, if there was one
VEL_EXPORT MessageHandler SetMessageHandler(MessageHandler handler);

}  // namespace ScrollingCapture
