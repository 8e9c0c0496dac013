#pragma once

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>
#include <type_traits>

#include <xcb/xcb.h>

namespace ScrollingCapture::Live {

/// The display, or what was chosen on it, cannot be captured; what() tells the user why.
class CaptureFailure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Frees what the C library has allocated.
struct FreeMemory {
  void operator()(void* memory) const { std::free(memory); }
};

/// What the server has sent. Null when it refused, or the connection is lost.
template <typename Content>
using XReply = std::unique_ptr<Content, FreeMemory>;

/// A connection to an X server. One thread at a time.
class XConnection {
 public:
  /// Connects to the display that the environment names. Throws CaptureFailure.
  XConnection();
  XConnection(const XConnection&) = delete;
  XConnection& operator=(const XConnection&) = delete;
  ~XConnection() { xcb_disconnect(connection); }

  xcb_connection_t* Get() const { return connection; }
  const xcb_screen_t& Screen() const { return *screen; }
  xcb_window_t Root() const { return screen->root; }

  /// Whether the server is gone.
  bool IsLost() const { return xcb_connection_has_error(connection) != 0; }

  /// The extension's number of its first event, or -1 where the server has no such extension.
  int FirstEventOf(xcb_extension_t& extension) const;
  bool Has(xcb_extension_t& extension) const { return FirstEventOf(extension) >= 0; }

  /// Whether the server has an extension of that name.
  bool HasNamed(const std::string& extension) const;

  /// The number that stands for a name.
  xcb_atom_t Atom(const std::string& name) const;

  /// Sends a request and waits for its reply: Ask(xcb_get_geometry, xcb_get_geometry_reply,
  /// window).
  template <typename Request, typename Receive, typename... Arguments>
  auto Ask(Request request, Receive receive, Arguments... arguments) const {
    using Content = std::remove_pointer_t<decltype(receive(
        connection, request(connection, arguments...), nullptr))>;
    return XReply<Content>(receive(connection, request(connection, arguments...), nullptr));
  }

  /// Agrees with the server on the version of an extension, which is to be done before anything
  /// else is asked of it: AgreeOn(xcb_damage_id, xcb_damage_query_version,
  /// xcb_damage_query_version_reply, 1, 1).
  /// @param major,minor the version that is wanted
  /// @return the version that there is; null where the server has no such extension
  template <typename Request, typename Receive>
  auto AgreeOn(xcb_extension_t& extension, Request queryVersion, Receive receive,
               std::uint32_t major, std::uint32_t minor) const {
    using Version = decltype(Ask(queryVersion, receive, major, minor));
    return Has(extension) ? Ask(queryVersion, receive, major, minor) : Version();
  }

  /// Waits until the server has done everything asked so far.
  void Sync() const { Ask(xcb_get_input_focus, xcb_get_input_focus_reply); }

 private:
  xcb_connection_t* connection;
  xcb_screen_t* screen = nullptr;
};

/// What happened, such as XCB_KEY_PRESS, whether the server or another program tells of it.
inline int EventType(const xcb_generic_event_t& event) {
  constexpr int SentByProgram = 0x80;
  return event.response_type & ~SentByProgram;
}

/// Waits for the server's answer to a checked request.
/// @return whether it was done
bool Succeeds(const XConnection& connection, xcb_void_cookie_t request);

}  // namespace ScrollingCapture::Live
