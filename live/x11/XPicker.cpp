#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <optional>
#include <thread>

#include <live/x11/XConnection.h>
#include <live/x11/XKeySymbols.h>
#include <live/x11/XOutline.h>
#include <live/x11/XPicker.h>
#include <live/x11/XWindows.h>
#include <xkbcommon/xkbcommon-keysyms.h>

namespace ScrollingCapture::Live {
namespace {

constexpr int ShortestDrag = 8;  // in pixels; anything shorter is a click
constexpr std::uint16_t CrosshairShape = 34;

/// The pointer and the keyboard, for this program alone.
class XGrabbedInput {
 public:
  explicit XGrabbedInput(const XConnection& connection)
      : connection(connection),
        font(xcb_generate_id(connection.Get())),
        crosshair(xcb_generate_id(connection.Get())) {
    constexpr std::string_view CursorFont = "cursor";
    constexpr std::uint16_t Full = 0xFFFF;
    xcb_open_font(connection.Get(), font, CursorFont.size(), CursorFont.data());
    xcb_create_glyph_cursor(connection.Get(), crosshair, font, font, CrosshairShape,
                            CrosshairShape + 1, 0, 0, 0, Full, Full, Full);
    const auto pointer = connection.Ask(
        xcb_grab_pointer, xcb_grab_pointer_reply, std::uint8_t{0}, connection.Root(),
        static_cast<std::uint16_t>(XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE |
                                   XCB_EVENT_MASK_POINTER_MOTION),
        std::uint8_t{XCB_GRAB_MODE_ASYNC}, std::uint8_t{XCB_GRAB_MODE_ASYNC},
        xcb_window_t{XCB_WINDOW_NONE}, crosshair, xcb_timestamp_t{XCB_CURRENT_TIME});
    if (!pointer || pointer->status != XCB_GRAB_STATUS_SUCCESS) {
      throw CaptureFailure("another program holds the pointer; close its menu, and try again");
    }
    connection.Ask(xcb_grab_keyboard, xcb_grab_keyboard_reply, std::uint8_t{0}, connection.Root(),
                   xcb_timestamp_t{XCB_CURRENT_TIME}, std::uint8_t{XCB_GRAB_MODE_ASYNC},
                   std::uint8_t{XCB_GRAB_MODE_ASYNC});
  }
  XGrabbedInput(const XGrabbedInput&) = delete;
  XGrabbedInput& operator=(const XGrabbedInput&) = delete;
  ~XGrabbedInput() {
    xcb_ungrab_keyboard(connection.Get(), XCB_CURRENT_TIME);
    xcb_ungrab_pointer(connection.Get(), XCB_CURRENT_TIME);
    xcb_free_cursor(connection.Get(), crosshair);
    xcb_close_font(connection.Get(), font);
    connection.Sync();
  }

 private:
  const XConnection& connection;
  const xcb_font_t font;
  const xcb_cursor_t crosshair;
};

class Picker {
 public:
  explicit Picker(const XConnection& connection) : outline(connection), connection(connection) {}

  /// @return whether the user has chosen or cancelled
  bool Take(const xcb_generic_event_t& event) {
    switch (EventType(event)) {
      case XCB_BUTTON_PRESS:
        return Press(reinterpret_cast<const xcb_button_press_event_t&>(event));
      case XCB_MOTION_NOTIFY:
        Move(reinterpret_cast<const xcb_motion_notify_event_t&>(event));
        return false;
      case XCB_BUTTON_RELEASE:
        return Release(reinterpret_cast<const xcb_button_release_event_t&>(event));
      case XCB_KEY_PRESS:
        return IsEscape(reinterpret_cast<const xcb_key_press_event_t&>(event));
      default:
        return false;
    }
  }

  std::optional<XChoice> choice;  ///< nothing when the user has cancelled

 private:
  bool Press(const xcb_button_press_event_t& event) {
    if (event.detail != XCB_BUTTON_INDEX_1) {
      return true;
    }
    pressed = cv::Point(event.root_x, event.root_y);
    return false;
  }

  void Move(const xcb_motion_notify_event_t& event) {
    const cv::Rect dragged = DraggedTo({event.root_x, event.root_y});
    if (!dragged.empty()) {
      outline.Show(dragged);
    } else if (!pressed) {
      const std::optional<cv::Rect> area = AreaOnScreen(connection, WindowUnderPointer());
      outline.Show(area.value_or(cv::Rect()));
    }
  }

  bool Release(const xcb_button_release_event_t& event) {
    if (!pressed || event.detail != XCB_BUTTON_INDEX_1) {
      return false;
    }
    const cv::Rect dragged = DraggedTo({event.root_x, event.root_y});
    if (!dragged.empty()) {
      choice = XChoice{XCB_WINDOW_NONE, dragged};
      return true;
    }
    outline.Show({});
    const xcb_window_t window = WindowUnderPointer();
    if (window != XCB_WINDOW_NONE) {
      choice = XChoice{window, {}};
    }
    pressed.reset();
    return choice.has_value();
  }

  bool IsEscape(const xcb_key_press_event_t& event) const {
    const XKeySymbols symbols = KeySymbolsOf(connection);
    return xcb_key_symbols_get_keysym(symbols.get(), event.detail, 0) == XKB_KEY_Escape;
  }

  /// Empty while this may still become a click.
  cv::Rect DraggedTo(const cv::Point& place) const {
    if (!pressed || (std::abs(place.x - pressed->x) < ShortestDrag &&
                     std::abs(place.y - pressed->y) < ShortestDrag)) {
      return {};
    }
    return {*pressed, place};
  }

  /// The program's window; none over the screen's background.
  xcb_window_t WindowUnderPointer() const {
    for (const xcb_window_t window : WindowsUnderPointer(connection)) {
      return ClientWithin(connection, window);
    }
    return XCB_WINDOW_NONE;
  }

  XOutline outline;
  const XConnection& connection;
  std::optional<cv::Point> pressed;
};

std::optional<XChoice> Pick(const XConnection& connection, const std::function<bool()>& goOn) {
  constexpr std::chrono::milliseconds Moment(20);
  const XGrabbedInput input(connection);
  Picker picker(connection);
  while (goOn()) {
    while (const XReply<xcb_generic_event_t> event{xcb_poll_for_event(connection.Get())}) {
      if (picker.Take(*event)) {
        return picker.choice;
      }
    }
    if (connection.IsLost()) {
      throw CaptureFailure("the connection to the X server broke");
    }
    std::this_thread::sleep_for(Moment);
  }
  return std::nullopt;
}

}  // namespace

std::optional<XChoice> PickOnScreen(const std::function<bool()>& goOn) {
  constexpr std::chrono::milliseconds UntilDrawnAgain(200);  // what was below the outline
  const XConnection connection;
  const std::optional<XChoice> choice = Pick(connection, goOn);
  std::this_thread::sleep_for(UntilDrawnAgain);
  return choice;
}

}  // namespace ScrollingCapture::Live
