#include <algorithm>
#include <sstream>

#include <live/x11/LowerCase.h>
#include <live/x11/XScreens.h>
#include <live/x11/XWindows.h>

namespace ScrollingCapture::Live {
namespace {

constexpr std::uint32_t LongestProperty = 1024;  // in units of four bytes

XReply<xcb_get_property_reply_t> Property(const XConnection& connection, xcb_window_t window,
                                          xcb_atom_t name) {
  return connection.Ask(xcb_get_property, xcb_get_property_reply, std::uint8_t{0}, window, name,
                        xcb_atom_t{XCB_GET_PROPERTY_TYPE_ANY}, std::uint32_t{0}, LongestProperty);
}

std::string TextOf(const XReply<xcb_get_property_reply_t>& property) {
  if (!property || property->format != 8) {
    return {};
  }
  return {static_cast<const char*>(xcb_get_property_value(property.get())),
          static_cast<std::size_t>(xcb_get_property_value_length(property.get()))};
}

/// From the lowest to the topmost.
std::vector<xcb_window_t> ChildrenOf(const XConnection& connection, xcb_window_t window) {
  const auto tree = connection.Ask(xcb_query_tree, xcb_query_tree_reply, window);
  if (!tree) {
    return {};
  }
  const xcb_window_t* const first = xcb_query_tree_children(tree.get());
  return {first, first + xcb_query_tree_children_length(tree.get())};
}

xcb_window_t ParentOf(const XConnection& connection, xcb_window_t window) {
  const auto tree = connection.Ask(xcb_query_tree, xcb_query_tree_reply, window);
  return tree ? tree->parent : xcb_window_t{XCB_WINDOW_NONE};
}

/// With its border.
cv::Rect OuterArea(const XConnection& connection, xcb_window_t window) {
  const auto area = connection.Ask(xcb_get_geometry, xcb_get_geometry_reply, window);
  const auto inner = AreaOnScreen(connection, window);
  if (!area || !inner) {
    return {};
  }
  const int border = area->border_width;
  return {inner->x - border, inner->y - border, inner->width + 2 * border,
          inner->height + 2 * border};
}

bool IsCoveredBySibling(const XConnection& connection, xcb_window_t window, xcb_window_t parent,
                        const cv::Rect& area) {
  const std::vector<xcb_window_t> siblings = ChildrenOf(connection, parent);
  const auto self = std::find(siblings.begin(), siblings.end(), window);
  return self != siblings.end() && std::any_of(self + 1, siblings.end(), [&](xcb_window_t above) {
           return IsViewable(connection, above) && !(OuterArea(connection, above) & area).empty();
         });
}

bool HasState(const XConnection& connection, xcb_window_t window) {
  const auto state = Property(connection, window, connection.Atom("WM_STATE"));
  return state && state->type != XCB_ATOM_NONE;
}

/// The windows of programs as the window manager lists them; without one, those right above the
/// screen's background.
std::vector<xcb_window_t> ProgramWindows(const XConnection& connection) {
  const auto list = Property(connection, connection.Root(), connection.Atom("_NET_CLIENT_LIST"));
  if (!list || list->type != XCB_ATOM_WINDOW) {
    return ChildrenOf(connection, connection.Root());
  }
  const auto* const first = static_cast<const xcb_window_t*>(xcb_get_property_value(list.get()));
  return {first, first + list->value_len};
}

std::string Named(const XConnection& connection, const std::vector<xcb_window_t>& windows) {
  std::ostringstream names;
  for (const xcb_window_t window : windows) {
    names << (window == windows.front() ? "" : ", ") << "0x" << std::hex << window << " '"
          << TitleOf(connection, window) << "'";
  }
  return names.str();
}

}  // namespace

std::optional<cv::Rect> AreaOnScreen(const XConnection& connection, xcb_window_t window) {
  const auto area = connection.Ask(xcb_get_geometry, xcb_get_geometry_reply, window);
  const auto origin = connection.Ask(xcb_translate_coordinates, xcb_translate_coordinates_reply,
                                     window, connection.Root(), std::int16_t{0}, std::int16_t{0});
  if (!area || !origin) {
    return std::nullopt;
  }
  return cv::Rect(origin->dst_x, origin->dst_y, area->width, area->height);
}

bool IsViewable(const XConnection& connection, xcb_window_t window) {
  const auto attributes =
      connection.Ask(xcb_get_window_attributes, xcb_get_window_attributes_reply, window);
  return attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE &&
         attributes->_class == XCB_WINDOW_CLASS_INPUT_OUTPUT;
}

bool IsCovered(const XConnection& connection, xcb_window_t window) {
  const std::optional<cv::Rect> area = AreaOnScreen(connection, window);
  if (!area || (*area & WholeDisplay(connection)) != *area) {
    return true;
  }
  while (window != XCB_WINDOW_NONE && window != connection.Root()) {
    const xcb_window_t parent = ParentOf(connection, window);
    if (IsCoveredBySibling(connection, window, parent, *area)) {
      return true;
    }
    window = parent;
  }
  return false;
}

xcb_window_t ClientWithin(const XConnection& connection, xcb_window_t window) {
  std::vector<xcb_window_t> level = {window};
  while (!level.empty()) {
    std::vector<xcb_window_t> below;
    for (const xcb_window_t candidate : level) {
      if (HasState(connection, candidate)) {
        return candidate;
      }
      const std::vector<xcb_window_t> children = ChildrenOf(connection, candidate);
      below.insert(below.end(), children.begin(), children.end());
    }
    level = std::move(below);
  }
  return window;
}

std::vector<xcb_window_t> WindowsUnderPointer(const XConnection& connection) {
  std::vector<xcb_window_t> windows;
  xcb_window_t window = connection.Root();
  for (;;) {
    const auto pointer = connection.Ask(xcb_query_pointer, xcb_query_pointer_reply, window);
    if (!pointer || pointer->child == XCB_WINDOW_NONE) {
      return windows;
    }
    window = pointer->child;
    windows.push_back(window);
  }
}

std::string TitleOf(const XConnection& connection, xcb_window_t window) {
  const std::string title = TextOf(Property(connection, window, connection.Atom("_NET_WM_NAME")));
  return title.empty() ? TextOf(Property(connection, window, XCB_ATOM_WM_NAME)) : title;
}

xcb_window_t FindWindow(const XConnection& connection, const std::string& text) {
  std::vector<xcb_window_t> found;
  for (const xcb_window_t window : ProgramWindows(connection)) {
    const std::string title = LowerCase(TitleOf(connection, window));
    if (title.find(LowerCase(text)) != std::string::npos && IsViewable(connection, window)) {
      found.push_back(window);
    }
  }
  if (found.empty()) {
    throw CaptureFailure("no window on the screen has '" + text + "' in its title");
  }
  if (found.size() > 1) {
    throw CaptureFailure("several windows have '" + text + "' in their titles: " +
                         Named(connection, found) + "; choose one by its number with --window");
  }
  return found.front();
}

}  // namespace ScrollingCapture::Live
