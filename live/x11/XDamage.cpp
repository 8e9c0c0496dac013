#include <live/x11/XDamage.h>

namespace ScrollingCapture::Live {

XDamage::XDamage(const XConnection& connection, xcb_window_t window) : connection(connection) {
  if (!connection.AgreeOn(xcb_damage_id, xcb_damage_query_version, xcb_damage_query_version_reply,
                          XCB_DAMAGE_MAJOR_VERSION, XCB_DAMAGE_MINOR_VERSION)) {
    return;
  }
  const xcb_damage_damage_t made = xcb_generate_id(connection.Get());
  if (Succeeds(connection, xcb_damage_create_checked(connection.Get(), made, window,
                                                     XCB_DAMAGE_REPORT_LEVEL_DELTA_RECTANGLES))) {
    damage = made;
  }
}

XDamage::~XDamage() {
  if (IsHeard()) {
    xcb_damage_destroy(connection.Get(), damage);
  }
}

bool XDamage::IsIn(const xcb_generic_event_t& event, const cv::Rect& area) const {
  if (!IsHeard() ||
      EventType(event) != connection.FirstEventOf(xcb_damage_id) + XCB_DAMAGE_NOTIFY) {
    return false;
  }
  const auto& drawn = reinterpret_cast<const xcb_damage_notify_event_t&>(event).area;
  return !(cv::Rect(drawn.x, drawn.y, drawn.width, drawn.height) & area).empty();
}

void XDamage::Forget() const {
  if (IsHeard()) {
    xcb_damage_subtract(connection.Get(), damage, XCB_XFIXES_REGION_NONE, XCB_XFIXES_REGION_NONE);
  }
}

}  // namespace ScrollingCapture::Live
