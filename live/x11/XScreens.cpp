#include <live/SeenArea.h>
#include <live/x11/XScreens.h>
#include <xcb/randr.h>

namespace ScrollingCapture::Live {
namespace {

using Resources = xcb_randr_get_screen_resources_current_reply_t;

XReply<Resources> ResourcesOf(const XConnection& connection) {
  if (!connection.AgreeOn(xcb_randr_id, xcb_randr_query_version, xcb_randr_query_version_reply, 1,
                          3)) {
    return nullptr;
  }
  return connection.Ask(xcb_randr_get_screen_resources_current,
                        xcb_randr_get_screen_resources_current_reply, connection.Root());
}

std::string NameOfOutput(const XConnection& connection, xcb_randr_output_t output) {
  const auto info = connection.Ask(xcb_randr_get_output_info, xcb_randr_get_output_info_reply,
                                   output, xcb_timestamp_t{XCB_CURRENT_TIME});
  if (!info) {
    return {};
  }
  return {reinterpret_cast<const char*>(xcb_randr_get_output_info_name(info.get())),
          static_cast<std::size_t>(xcb_randr_get_output_info_name_length(info.get()))};
}

}  // namespace

cv::Rect WholeDisplay(const XConnection& connection) {
  return {0, 0, connection.Screen().width_in_pixels, connection.Screen().height_in_pixels};
}

std::vector<cv::Rect> ScreensOf(const XConnection& connection) {
  std::vector<cv::Rect> screens;
  const auto resources = ResourcesOf(connection);
  const int count =
      resources ? xcb_randr_get_screen_resources_current_crtcs_length(resources.get()) : 0;
  for (int i = 0; i < count; ++i) {
    const auto info =
        connection.Ask(xcb_randr_get_crtc_info, xcb_randr_get_crtc_info_reply,
                       xcb_randr_get_screen_resources_current_crtcs(resources.get())[i],
                       xcb_timestamp_t{XCB_CURRENT_TIME});
    if (info && info->width > 0 && info->height > 0) {
      screens.emplace_back(info->x, info->y, info->width, info->height);
    }
  }
  return screens.empty() ? std::vector<cv::Rect>{WholeDisplay(connection)} : screens;
}

bool IsOnScreens(const XConnection& connection, const cv::Rect& region) {
  SeenArea screens;
  for (const cv::Rect& screen : ScreensOf(connection)) {
    screens.Add(screen);
  }
  return !region.empty() && screens.Covers(region);
}

std::string DescribeScreens(const XConnection& connection) {
  std::string description;
  for (const cv::Rect& screen : ScreensOf(connection)) {
    description += (description.empty() ? "" : " and ") + std::to_string(screen.width) + "x" +
                   std::to_string(screen.height) + "+" + std::to_string(screen.x) + "+" +
                   std::to_string(screen.y);
  }
  return description;
}

bool IsXWayland(const XConnection& connection) {
  if (connection.HasNamed("XWAYLAND")) {
    return true;
  }
  const auto resources = ResourcesOf(connection);
  return resources && xcb_randr_get_screen_resources_current_outputs_length(resources.get()) > 0 &&
         NameOfOutput(connection,
                      xcb_randr_get_screen_resources_current_outputs(resources.get())[0])
                 .rfind("XWAYLAND", 0) == 0;
}

}  // namespace ScrollingCapture::Live
