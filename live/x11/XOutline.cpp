#include <algorithm>

#include <live/x11/XOutline.h>
#include <xcb/shape.h>
#include <xcb/xfixes.h>

namespace ScrollingCapture::Live {
namespace {

constexpr int Thickness = 3;
constexpr std::uint32_t Orange = 0xFF8C00;

std::array<cv::Rect, 4> SidesOf(const cv::Rect& area) {
  const int width = std::min(Thickness, area.width);
  const int height = std::min(Thickness, area.height);
  return {cv::Rect(area.x, area.y, area.width, height),
          cv::Rect(area.x, area.br().y - height, area.width, height),
          cv::Rect(area.x, area.y, width, area.height),
          cv::Rect(area.br().x - width, area.y, width, area.height)};
}

/// The pointer goes through the windows then, to what is below.
void LetPointerThrough(const XConnection& connection, const std::array<xcb_window_t, 4>& windows) {
  if (!connection.AgreeOn(xcb_xfixes_id, xcb_xfixes_query_version, xcb_xfixes_query_version_reply,
                          XCB_XFIXES_MAJOR_VERSION, XCB_XFIXES_MINOR_VERSION)) {
    return;
  }
  const xcb_xfixes_region_t nothing = xcb_generate_id(connection.Get());
  xcb_xfixes_create_region(connection.Get(), nothing, 0, nullptr);
  for (const xcb_window_t window : windows) {
    xcb_xfixes_set_window_shape_region(connection.Get(), window, XCB_SHAPE_SK_INPUT, 0, 0, nothing);
  }
  xcb_xfixes_destroy_region(connection.Get(), nothing);
}

}  // namespace

XOutline::XOutline(const XConnection& connection) : connection(connection) {
  const std::array<std::uint32_t, 2> values = {Orange, 1};  // the latter: override redirect
  for (xcb_window_t& side : sides) {
    side = xcb_generate_id(connection.Get());
    xcb_create_window(connection.Get(), XCB_COPY_FROM_PARENT, side, connection.Root(), 0, 0, 1, 1,
                      0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                      XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT, values.data());
  }
  LetPointerThrough(connection, sides);
}

XOutline::~XOutline() {
  for (const xcb_window_t side : sides) {
    xcb_destroy_window(connection.Get(), side);
  }
  connection.Sync();
}

void XOutline::Show(const cv::Rect& rectangle) {
  if (rectangle == shown) {
    return;
  }
  shown = rectangle;
  const std::array<cv::Rect, 4> places = SidesOf(rectangle);
  for (std::size_t i = 0; i < sides.size(); ++i) {
    if (rectangle.empty()) {
      xcb_unmap_window(connection.Get(), sides.at(i));
      continue;
    }
    const cv::Rect& place = places.at(i);
    const std::array<std::uint32_t, 5> values = {
        static_cast<std::uint32_t>(place.x), static_cast<std::uint32_t>(place.y),
        static_cast<std::uint32_t>(place.width), static_cast<std::uint32_t>(place.height),
        XCB_STACK_MODE_ABOVE};
    xcb_configure_window(connection.Get(), sides.at(i),
                         XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH |
                             XCB_CONFIG_WINDOW_HEIGHT | XCB_CONFIG_WINDOW_STACK_MODE,
                         values.data());
    xcb_map_window(connection.Get(), sides.at(i));
  }
  xcb_flush(connection.Get());
}

}  // namespace ScrollingCapture::Live
