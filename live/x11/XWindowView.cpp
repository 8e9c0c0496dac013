#include <live/x11/XWindowView.h>
#include <live/x11/XWindows.h>
#include <xcb/composite.h>

namespace ScrollingCapture::Live {
namespace {

/// Pixmaps of windows came with version 0.2.
bool HasWindowPixmaps(const XConnection& connection) {
  const auto version = connection.AgreeOn(xcb_composite_id, xcb_composite_query_version,
                                          xcb_composite_query_version_reply,
                                          XCB_COMPOSITE_MAJOR_VERSION, XCB_COMPOSITE_MINOR_VERSION);
  return version && (version->major_version > 0 || version->minor_version >= 2);
}

}  // namespace

XWindowView::XWindowView(const XConnection& connection, xcb_window_t window)
    : connection(connection), window(window) {
  isRedirected =
      HasWindowPixmaps(connection) &&
      Succeeds(connection, xcb_composite_redirect_window_checked(connection.Get(), window,
                                                                 XCB_COMPOSITE_REDIRECT_AUTOMATIC));
  Renew();
}

XWindowView::~XWindowView() {
  if (pixmap != XCB_PIXMAP_NONE) {
    xcb_free_pixmap(connection.Get(), pixmap);
  }
  if (isRedirected) {
    xcb_composite_unredirect_window(connection.Get(), window, XCB_COMPOSITE_REDIRECT_AUTOMATIC);
  }
}

void XWindowView::Renew() {
  if (pixmap != XCB_PIXMAP_NONE) {
    xcb_free_pixmap(connection.Get(), pixmap);
    pixmap = XCB_PIXMAP_NONE;
  }
  if (!isRedirected) {
    return;
  }
  const xcb_pixmap_t named = xcb_generate_id(connection.Get());
  const auto area = connection.Ask(xcb_get_geometry, xcb_get_geometry_reply, window);
  if (area && Succeeds(connection,
                       xcb_composite_name_window_pixmap_checked(connection.Get(), window, named))) {
    pixmap = named;
    origin = {area->border_width, area->border_width};
  }
}

std::string XWindowView::Hindrance() const {
  if (!IsViewable(connection, window)) {
    return "the window is hidden; show it again";
  }
  if (pixmap == XCB_PIXMAP_NONE && IsCovered(connection, window)) {
    return "the window is covered or partly off the screen; bring it into sight";
  }
  return {};
}

}  // namespace ScrollingCapture::Live
