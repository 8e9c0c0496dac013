#include <algorithm>
#include <poll.h>
#include <sstream>
#include <thread>

#include <live/x11/X11CaptureSource.h>
#include <live/x11/XPointerImage.h>
#include <live/x11/XScreens.h>
#include <live/x11/XWindows.h>

namespace ScrollingCapture::Live {
namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

constexpr milliseconds BetweenGuesses(16);  // where no changes are told

std::string NumberOf(xcb_window_t window) {
  std::ostringstream number;
  number << "0x" << std::hex << window;
  return number.str();
}

/// The window's area within itself.
cv::Rect AreaOfWindow(const XConnection& connection, xcb_window_t window) {
  const std::optional<cv::Rect> area = AreaOnScreen(connection, window);
  if (!area) {
    throw CaptureFailure("there is no window " + NumberOf(window));
  }
  if (!IsViewable(connection, window)) {
    throw CaptureFailure("the window " + NumberOf(window) + " is hidden; show it first");
  }
  return {{}, area->size()};
}

cv::Rect CheckedRegion(const XConnection& connection, const cv::Rect& region) {
  if (!IsOnScreens(connection, region)) {
    throw CaptureFailure("the region reaches outside the screens, which are " +
                         DescribeScreens(connection));
  }
  if (IsXWayland(connection)) {
    throw CaptureFailure(
        "in a Wayland session no region of the screen can be captured, but only windows that use "
        "X11; choose one with --window");
  }
  return region;
}

XPixels PixelsOf(const XConnection& connection, xcb_window_t window) {
  const auto geometry = connection.Ask(xcb_get_geometry, xcb_get_geometry_reply, window);
  const auto attributes =
      connection.Ask(xcb_get_window_attributes, xcb_get_window_attributes_reply, window);
  if (!geometry || !attributes) {
    throw CaptureFailure("there is no window " + NumberOf(window));
  }
  return {connection, geometry->depth, attributes->visual};
}

/// The window right above the screen's background at a place.
xcb_window_t WindowAt(const XConnection& connection, const cv::Point& place) {
  const auto at = connection.Ask(
      xcb_translate_coordinates, xcb_translate_coordinates_reply, connection.Root(),
      connection.Root(), static_cast<std::int16_t>(place.x), static_cast<std::int16_t>(place.y));
  return at ? at->child : xcb_window_t{XCB_WINDOW_NONE};
}

cv::Point MiddleOf(const cv::Rect& area) { return (area.tl() + area.br()) / 2; }

}  // namespace

X11CaptureSource::X11CaptureSource(const XChoice& choice, bool showsPointer)
    : watched(choice.window != XCB_WINDOW_NONE ? choice.window : connection.Root()),
      area(choice.window != XCB_WINDOW_NONE ? AreaOfWindow(connection, choice.window)
                                            : CheckedRegion(connection, choice.region)),
      pixels(PixelsOf(connection, watched)),
      showsPointer(showsPointer),
      damage(connection, watched),
      reader(connection) {
  scrolled = choice.window;
  if (choice.window == XCB_WINDOW_NONE) {
    scrolled = WindowAt(connection, MiddleOf(area));
    return;
  }
  const std::uint32_t events = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
  xcb_change_window_attributes(connection.Get(), watched, XCB_CW_EVENT_MASK, &events);
  view.emplace(connection, watched);
}

cv::Rect X11CaptureSource::Region() const {
  const std::optional<cv::Rect> place =
      IsWindow() ? AreaOnScreen(connection, watched) : std::nullopt;
  return {place ? place->tl() : area.tl(), area.size()};
}

bool X11CaptureSource::WaitForChange(milliseconds timeout) {
  const Clock::time_point end = Clock::now() + timeout;
  TakeEvents();
  if (!damage.IsHeard()) {
    std::this_thread::sleep_for(std::min(timeout, BetweenGuesses));
    hasChanged = true;
  }
  for (milliseconds left = timeout; !hasChanged && left.count() > 0;
       left = std::chrono::ceil<milliseconds>(end - Clock::now())) {
    Poll(left);
    TakeEvents();
  }
  return hasChanged;
}

void X11CaptureSource::Poll(milliseconds timeout) const {
  xcb_flush(connection.Get());
  pollfd server = {xcb_get_file_descriptor(connection.Get()), POLLIN, 0};
  ::poll(&server, 1, static_cast<int>(timeout.count()));
}

void X11CaptureSource::TakeEvents() {
  for (;;) {
    const XReply<xcb_generic_event_t> event(xcb_poll_for_event(connection.Get()));
    if (!event) {
      break;
    }
    Take(*event);
  }
  RequireServer();
}

void X11CaptureSource::Take(const xcb_generic_event_t& event) {
  const int type = EventType(event);
  if (type == XCB_DESTROY_NOTIFY) {
    throw CaptureEnded("the window was closed");
  }
  if (type == XCB_CONFIGURE_NOTIFY) {
    const auto& configured = reinterpret_cast<const xcb_configure_notify_event_t&>(event);
    if (cv::Size(configured.width, configured.height) != area.size()) {
      throw CaptureEnded("the window changed its size");
    }
  }
  if (type == XCB_MAP_NOTIFY && IsWindow()) {
    view->Renew();
    hasChanged = true;
  }
  hasChanged = hasChanged || damage.IsIn(event, area);
}

void X11CaptureSource::RequireServer() const {
  if (connection.IsLost()) {
    throw CaptureEnded("the connection to the X server broke");
  }
}

Frame X11CaptureSource::Grab() {
  hasChanged = false;
  damage.Forget();
  Frame frame;
  frame.hindrance = IsWindow() ? view->Hindrance() : std::string();
  if (frame.hindrance.empty()) {
    frame.pixels = Read();
  }
  TakeEvents();
  if (frame.pixels.empty() && frame.hindrance.empty()) {
    frame.hindrance = "the X server does not show its pixels";
  }
  if (showsPointer && !frame.pixels.empty()) {
    DrawPointer(connection, Region().tl(), frame.pixels);
  }
  return frame;
}

cv::Mat X11CaptureSource::Read() {
  return IsWindow() ? reader.Read(view->Drawable(), area + view->Origin(), pixels)
                    : reader.Read(connection.Root(), area, pixels);
}

std::string X11CaptureSource::Scroll(ScrollDirection direction, int steps) {
  const cv::Rect visible = Region() & WholeDisplay(connection);
  if (visible.empty() || scrolled == XCB_WINDOW_NONE) {
    return "there is no window to scroll at the region's middle";
  }
  std::string obstacle = XWheel(connection).Turn(scrolled, MiddleOf(visible), direction, steps);
  TakeEvents();
  return obstacle;
}

}  // namespace ScrollingCapture::Live
