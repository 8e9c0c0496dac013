#include "UserInput.h"

#include <live/x11/XKeySymbols.h>
#include <xcb/xtest.h>

namespace ScrollingCapture::Testing {

void UserInput::MoveTo(const cv::Point& place) const {
  xcb_test_fake_input(connection.Get(), XCB_MOTION_NOTIFY, 0, XCB_CURRENT_TIME, connection.Root(),
                      static_cast<std::int16_t>(place.x), static_cast<std::int16_t>(place.y), 0);
  connection.Sync();
}

void UserInput::PressButton(int button) const { Fake(XCB_BUTTON_PRESS, button); }
void UserInput::ReleaseButton(int button) const { Fake(XCB_BUTTON_RELEASE, button); }
void UserInput::PressKey(std::uint32_t symbol) const { Fake(XCB_KEY_PRESS, CodeOf(symbol)); }
void UserInput::ReleaseKey(std::uint32_t symbol) const { Fake(XCB_KEY_RELEASE, CodeOf(symbol)); }

cv::Point UserInput::Pointer() const {
  const auto pointer =
      connection.Ask(xcb_query_pointer, xcb_query_pointer_reply, connection.Root());
  return {pointer->root_x, pointer->root_y};
}

void UserInput::Fake(int type, int detail) const {
  xcb_test_fake_input(connection.Get(), static_cast<std::uint8_t>(type),
                      static_cast<std::uint8_t>(detail), XCB_CURRENT_TIME, XCB_WINDOW_NONE, 0, 0,
                      0);
  connection.Sync();
}

int UserInput::CodeOf(std::uint32_t symbol) const {
  const Live::XKeySymbols symbols = Live::KeySymbolsOf(connection);
  const Live::XReply<xcb_keycode_t> codes(xcb_key_symbols_get_keycode(symbols.get(), symbol));
  return codes ? codes.get()[0] : 0;
}

}  // namespace ScrollingCapture::Testing
