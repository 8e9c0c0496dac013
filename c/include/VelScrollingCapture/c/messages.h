#pragma once

/// \file
/// Where the library's messages go.

#include <stdint.h>

#include <VelScrollingCapture/c/results.h>

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/// What a message is about.
typedef enum vel_message_kind {
  VEL_ERROR = 0,       ///< Something failed or was refused; by default for standard error.
  VEL_INFORMATION = 1  ///< How the work went; by default for standard output.
} vel_message_kind;

/// Takes a message. Called on the thread that the message comes from, by several at once.
/// @param kind a vel_message_kind
/// @param text one line without its end; lives until the callback returns
/// @param user what was given to vel_set_message_handler
typedef void (*vel_message_handler)(int32_t kind, const char* text, void* user);

/// Hands all messages of the library in this process to a handler, instead of to the standard
/// streams. May be called from any thread at any time; a call of the handler before that is under
/// way goes on to its end.
/// @param handler NULL: they go to the streams again
/// @param user    passed to the handler
vel_result vel_set_message_handler(vel_message_handler handler, void* user);

#pragma GCC visibility pop
#ifdef __cplusplus
}  // extern "C"
#endif
