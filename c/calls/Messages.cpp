#include <string>

#include <c/calls/Failures.h>

#include <VelScrollingCapture/c/messages.h>
#include <VelScrollingCapture/core/Messages.h>

vel_result vel_set_message_handler(vel_message_handler handler, void* user) {
  using namespace ScrollingCapture;
  try {
    if (handler == nullptr) {
      SetMessageHandler(nullptr);
      return VEL_OK;
    }
    SetMessageHandler([handler, user](MessageKind kind, const std::string& text) {
      handler(kind == MessageKind::Error ? VEL_ERROR : VEL_INFORMATION, text.c_str(), user);
    });
    return VEL_OK;
  } catch (...) {
    return C::ExplainException(nullptr, 0);
  }
}
