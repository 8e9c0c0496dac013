#include "PageWindow.h"

#include <algorithm>
#include <array>
#include <vector>

namespace ScrollingCapture::Testing {
namespace {

constexpr std::uint8_t SentFlag = 0x80;
constexpr std::uint32_t DeepColour = 30;

/// A pixel as a program draws it that knows colours of 8 bits.
std::uint32_t PixelOf(const cv::Vec4b& colour, int depth) {
  if (depth != DeepColour) {
    return colour[0] * 0x10000U + colour[1] * 0x100U + colour[2];
  }
  const auto deep = [](unsigned int level) { return (level << 2) | (level >> 6); };
  return (deep(colour[0]) << 20) | (deep(colour[1]) << 10) | deep(colour[2]);
}

}  // namespace

PageWindow::PageWindow(cv::Mat page, const cv::Rect& area, const std::string& title)
    : page(std::move(page)), area(area), window(xcb_generate_id(connection.Get())) {
  const std::uint32_t events = XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_BUTTON_PRESS |
                               XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
  xcb_create_window(connection.Get(), XCB_COPY_FROM_PARENT, window, connection.Root(),
                    static_cast<std::int16_t>(area.x), static_cast<std::int16_t>(area.y),
                    static_cast<std::uint16_t>(area.width), static_cast<std::uint16_t>(area.height),
                    2, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK,
                    &events);
  xcb_change_property(connection.Get(), XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_NAME,
                      XCB_ATOM_STRING, 8, static_cast<std::uint32_t>(title.size()), title.data());
  context = xcb_generate_id(connection.Get());
  xcb_create_gc(connection.Get(), context, window, 0, nullptr);
  Show();
  listener = std::thread([this] { Listen(); });
}

PageWindow::~PageWindow() {
  Close();
  listener.join();
}

void PageWindow::Listen() {
  while (const Live::XReply<xcb_generic_event_t> event{xcb_wait_for_event(connection.Get())}) {
    if ((event->response_type & ~SentFlag) == XCB_DESTROY_NOTIFY) {
      return;
    }
    Take(*event);
  }
}

void PageWindow::Take(const xcb_generic_event_t& event) {
  const int type = event.response_type & ~SentFlag;
  presses += type == XCB_KEY_PRESS || type == XCB_BUTTON_PRESS ? 1 : 0;
  const std::lock_guard<std::mutex> lock(mutex);
  if (type == XCB_BUTTON_PRESS) {
    const int button = reinterpret_cast<const xcb_button_press_event_t&>(event).detail;
    const int step = button == XCB_BUTTON_INDEX_5   ? RowsOfStep
                     : button == XCB_BUTTON_INDEX_4 ? -RowsOfStep
                                                    : 0;
    row = std::clamp(row + step, 0, page.rows - area.height);
  }
  if (type == XCB_BUTTON_PRESS || type == XCB_EXPOSE) {
    Draw();
  }
}

void PageWindow::Draw() {
  const auto geometry = connection.Ask(xcb_get_geometry, xcb_get_geometry_reply, window);
  if (!geometry) {
    return;
  }
  std::vector<std::uint32_t> pixels;
  const cv::Mat_<cv::Vec4b> view = ViewAt(row);
  std::transform(view.begin(), view.end(), std::back_inserter(pixels),
                 [&](const cv::Vec4b& colour) { return PixelOf(colour, geometry->depth); });
  xcb_put_image(connection.Get(), XCB_IMAGE_FORMAT_Z_PIXMAP, window, context,
                static_cast<std::uint16_t>(area.width), static_cast<std::uint16_t>(area.height), 0,
                0, 0, geometry->depth, static_cast<std::uint32_t>(pixels.size() * 4),
                reinterpret_cast<const std::uint8_t*>(pixels.data()));
  connection.Sync();
}

void PageWindow::ScrollTo(int newRow) {
  const std::lock_guard<std::mutex> lock(mutex);
  row = newRow;
  Draw();
}

void PageWindow::MoveTo(const cv::Point& place) {
  const std::array<std::uint32_t, 2> values = {static_cast<std::uint32_t>(place.x),
                                               static_cast<std::uint32_t>(place.y)};
  xcb_configure_window(connection.Get(), window, XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y,
                       values.data());
  connection.Sync();
}

void PageWindow::Resize(const cv::Size& size) {
  const std::array<std::uint32_t, 2> values = {static_cast<std::uint32_t>(size.width),
                                               static_cast<std::uint32_t>(size.height)};
  xcb_configure_window(connection.Get(), window, XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT,
                       values.data());
  connection.Sync();
}

void PageWindow::Hide() {
  xcb_unmap_window(connection.Get(), window);
  connection.Sync();
}

void PageWindow::Show() {
  xcb_map_window(connection.Get(), window);
  ScrollTo(row);
}

void PageWindow::HoldPointer() {
  connection.Ask(xcb_grab_pointer, xcb_grab_pointer_reply, std::uint8_t{0}, window,
                 static_cast<std::uint16_t>(XCB_EVENT_MASK_BUTTON_PRESS),
                 std::uint8_t{XCB_GRAB_MODE_ASYNC}, std::uint8_t{XCB_GRAB_MODE_ASYNC},
                 xcb_window_t{XCB_WINDOW_NONE}, xcb_cursor_t{XCB_CURSOR_NONE},
                 xcb_timestamp_t{XCB_CURRENT_TIME});
}

void PageWindow::Close() {
  if (IsOpen()) {
    xcb_destroy_window(connection.Get(), window);
    connection.Sync();
    window = XCB_WINDOW_NONE;
  }
}

}  // namespace ScrollingCapture::Testing
