#include <sstream>
#include <vector>

#include <live/x11/LowerCase.h>
#include <live/x11/XKeySymbols.h>
#include <live/x11/XStopKey.h>
#include <xkbcommon/xkbcommon.h>

namespace ScrollingCapture::Live {
namespace {

struct Key {
  xkb_keysym_t symbol = XKB_KEY_NoSymbol;
  unsigned int modifiers = 0;
};

/// The bit of a modifier's name; 0 when it is none.
unsigned int ModifierOf(const std::string& name) {
  const std::string lower = LowerCase(name);
  if (lower == "ctrl" || lower == "control") {
    return XCB_MOD_MASK_CONTROL;
  }
  if (lower == "shift") {
    return XCB_MOD_MASK_SHIFT;
  }
  if (lower == "alt") {
    return XCB_MOD_MASK_1;
  }
  return lower == "super" ? static_cast<unsigned int>(XCB_MOD_MASK_4) : 0U;
}

[[noreturn]] void RefuseName(const std::string& name) {
  throw CaptureFailure("there is no key '" + name +
                       "'; name one such as F12, Pause or Ctrl+Shift+s");
}

Key ParseKey(const std::string& name) {
  std::vector<std::string> words;
  std::istringstream text(name);
  for (std::string word; std::getline(text, word, '+');) {
    words.push_back(word);
  }
  if (words.empty()) {
    RefuseName(name);
  }
  Key key;
  key.symbol = xkb_keysym_from_name(words.back().c_str(), XKB_KEYSYM_CASE_INSENSITIVE);
  for (auto word = words.begin(); word != words.end() - 1; ++word) {
    const unsigned int modifier = ModifierOf(*word);
    if (modifier == 0) {
      RefuseName(name);
    }
    key.modifiers |= modifier;
  }
  if (key.symbol == XKB_KEY_NoSymbol) {
    RefuseName(name);
  }
  return key;
}

/// The codes of the keys that give a symbol.
std::vector<xcb_keycode_t> CodesOf(const XConnection& connection, xkb_keysym_t symbol) {
  const XKeySymbols symbols = KeySymbolsOf(connection);
  const XReply<xcb_keycode_t> codes(xcb_key_symbols_get_keycode(symbols.get(), symbol));
  std::vector<xcb_keycode_t> found;
  for (const xcb_keycode_t* code = codes.get(); code != nullptr && *code != XCB_NO_SYMBOL; ++code) {
    found.push_back(*code);
  }
  return found;
}

/// Locks do not count: the key is grabbed with and without them.
bool Grab(const XConnection& connection, xcb_keycode_t code, unsigned int modifiers) {
  constexpr unsigned int CapsLock = XCB_MOD_MASK_LOCK;
  constexpr unsigned int NumLock = XCB_MOD_MASK_2;
  bool isGrabbed = true;
  for (const unsigned int locks : {0U, CapsLock, NumLock, CapsLock | NumLock}) {
    isGrabbed = Succeeds(connection,
                         xcb_grab_key_checked(connection.Get(), 1, connection.Root(),
                                              static_cast<std::uint16_t>(modifiers | locks), code,
                                              XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC)) &&
                isGrabbed;
  }
  return isGrabbed;
}

}  // namespace

XStopKey::XStopKey(const std::string& name) {
  const Key key = ParseKey(name);
  const std::vector<xcb_keycode_t> codes = CodesOf(connection, key.symbol);
  if (codes.empty()) {
    throw CaptureFailure("the keyboard has no key '" + name + "'; name another one");
  }
  for (const xcb_keycode_t code : codes) {
    if (!Grab(connection, code, key.modifiers)) {
      throw CaptureFailure("another program has taken the key '" + name + "'; name another one");
    }
  }
}

bool XStopKey::WasPressed() {
  bool wasPressed = false;
  while (const XReply<xcb_generic_event_t> event{xcb_poll_for_event(connection.Get())}) {
    wasPressed = wasPressed || EventType(*event) == XCB_KEY_PRESS;
  }
  return wasPressed;
}

}  // namespace ScrollingCapture::Live
