#include <algorithm>
#include <vector>

#include <live/x11/XWheel.h>
#include <live/x11/XWindows.h>
#include <xcb/xtest.h>

namespace ScrollingCapture::Live {
namespace {

/// Keeps the server for this connection alone.
class XGrabbedServer {
 public:
  explicit XGrabbedServer(const XConnection& connection) : connection(connection) {
    xcb_grab_server(connection.Get());
  }
  XGrabbedServer(const XGrabbedServer&) = delete;
  XGrabbedServer& operator=(const XGrabbedServer&) = delete;
  ~XGrabbedServer() {
    xcb_ungrab_server(connection.Get());
    connection.Sync();
  }

 private:
  const XConnection& connection;
};

int ButtonOf(ScrollDirection direction) {
  switch (direction) {
    case ScrollDirection::Up:
      return 4;
    case ScrollDirection::Down:
      return 5;
    case ScrollDirection::Left:
      return 6;
    default:
      return 7;
  }
}

void MovePointer(const XConnection& connection, const cv::Point& place) {
  xcb_warp_pointer(connection.Get(), XCB_WINDOW_NONE, connection.Root(), 0, 0, 0, 0,
                   static_cast<std::int16_t>(place.x), static_cast<std::int16_t>(place.y));
}

/// Whether another program takes all that the pointer does, as an open menu would.
bool IsPointerTaken(const XConnection& connection) {
  const auto grab =
      connection.Ask(xcb_grab_pointer, xcb_grab_pointer_reply, std::uint8_t{1}, connection.Root(),
                     std::uint16_t{0}, std::uint8_t{XCB_GRAB_MODE_ASYNC},
                     std::uint8_t{XCB_GRAB_MODE_ASYNC}, xcb_window_t{XCB_WINDOW_NONE},
                     xcb_cursor_t{XCB_CURSOR_NONE}, xcb_timestamp_t{XCB_CURRENT_TIME});
  if (!grab || grab->status != XCB_GRAB_STATUS_SUCCESS) {
    return true;
  }
  xcb_ungrab_pointer(connection.Get(), XCB_CURRENT_TIME);
  return false;
}

}  // namespace

std::string XWheel::Turn(xcb_window_t window, const cv::Point& place, ScrollDirection direction,
                         int steps) const {
  if (!connection.Has(xcb_test_id)) {
    return "the X server has no XTEST extension, which scrolling takes; scroll by hand";
  }
  const XGrabbedServer alone(connection);
  const auto pointer =
      connection.Ask(xcb_query_pointer, xcb_query_pointer_reply, connection.Root());
  constexpr int Keys = XCB_KEY_BUT_MASK_SHIFT | XCB_KEY_BUT_MASK_CONTROL | XCB_KEY_BUT_MASK_MOD_1 |
                       XCB_KEY_BUT_MASK_MOD_4;
  constexpr int Buttons =
      XCB_KEY_BUT_MASK_BUTTON_1 | XCB_KEY_BUT_MASK_BUTTON_2 | XCB_KEY_BUT_MASK_BUTTON_3;
  if (!pointer || (pointer->mask & (Keys | Buttons)) != 0) {
    return "a key or a button of the mouse is held down; let it go";
  }
  if (IsPointerTaken(connection)) {
    return "another program holds the pointer; close its menu";
  }
  MovePointer(connection, place);
  std::string obstacle = WhyNot(window);
  for (int i = 0; obstacle.empty() && i < steps; ++i) {
    Press(ButtonOf(direction));
  }
  MovePointer(connection, {pointer->root_x, pointer->root_y});
  return obstacle;
}

std::string XWheel::WhyNot(xcb_window_t window) const {
  const std::vector<xcb_window_t> windows = WindowsUnderPointer(connection);
  return std::find(windows.begin(), windows.end(), window) != windows.end()
             ? std::string()
             : "another window is in the way of the wheel; move it aside";
}

void XWheel::Press(int button) const {
  for (const int type : {XCB_BUTTON_PRESS, XCB_BUTTON_RELEASE}) {
    xcb_test_fake_input(connection.Get(), static_cast<std::uint8_t>(type),
                        static_cast<std::uint8_t>(button), XCB_CURRENT_TIME, XCB_WINDOW_NONE, 0, 0,
                        0);
  }
}

}  // namespace ScrollingCapture::Live
