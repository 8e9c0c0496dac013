#include <cstdlib>

#include <live/x11/XConnection.h>

namespace ScrollingCapture::Live {
namespace {

std::string DisplayName() {
  const char* const name = std::getenv("DISPLAY");
  return name == nullptr ? std::string() : name;
}

std::string WhyUnreachable() {
  if (!DisplayName().empty()) {
    return "cannot reach the X server of display '" + DisplayName() + "'";
  }
  return std::getenv("WAYLAND_DISPLAY") != nullptr
             ? "this session is Wayland without an X server, where windows cannot be captured yet; "
               "log in to a session with Xorg"
             : "there is no X server to capture from; run this in a graphical session, or set "
               "DISPLAY";
}

}  // namespace

XConnection::XConnection() {
  int number = 0;
  connection = xcb_connect(nullptr, &number);
  if (IsLost()) {
    xcb_disconnect(connection);
    throw CaptureFailure(WhyUnreachable());
  }
  xcb_screen_iterator_t screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
  for (; number > 0 && screens.rem > 1; --number) {
    xcb_screen_next(&screens);
  }
  screen = screens.data;
}

int XConnection::FirstEventOf(xcb_extension_t& extension) const {
  const xcb_query_extension_reply_t* const data = xcb_get_extension_data(connection, &extension);
  return data != nullptr && data->present != 0 ? data->first_event : -1;
}

bool XConnection::HasNamed(const std::string& extension) const {
  const auto reply = Ask(xcb_query_extension, xcb_query_extension_reply,
                         static_cast<std::uint16_t>(extension.size()), extension.c_str());
  return reply && reply->present != 0;
}

xcb_atom_t XConnection::Atom(const std::string& name) const {
  const auto reply = Ask(xcb_intern_atom, xcb_intern_atom_reply, std::uint8_t{0},
                         static_cast<std::uint16_t>(name.size()), name.c_str());
  return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

bool Succeeds(const XConnection& connection, xcb_void_cookie_t request) {
  return XReply<xcb_generic_error_t>(xcb_request_check(connection.Get(), request)) == nullptr &&
         !connection.IsLost();
}

}  // namespace ScrollingCapture::Live
