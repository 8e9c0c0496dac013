#pragma once

#include <memory>

#include <live/x11/XConnection.h>
#include <xcb/xcb_keysyms.h>

namespace ScrollingCapture::Live {

/// Frees what the keys of a keyboard stand for.
struct FreeKeySymbols {
  void operator()(xcb_key_symbols_t* symbols) const { xcb_key_symbols_free(symbols); }
};

using XKeySymbols = std::unique_ptr<xcb_key_symbols_t, FreeKeySymbols>;

/// What the keys of the server's keyboard stand for.
/// @param connection must outlive what is returned
inline XKeySymbols KeySymbolsOf(const XConnection& connection) {
  return XKeySymbols(xcb_key_symbols_alloc(connection.Get()));
}

}  // namespace ScrollingCapture::Live
