#include <live/x11/XPointerImage.h>
#include <xcb/xfixes.h>

namespace ScrollingCapture::Live {
namespace {

/// Lays a pixel (premultiplied alpha, red, green, blue from the most significant byte on) over an
/// opaque one.
void Lay(std::uint32_t pixel, cv::Vec4b& under) {
  constexpr unsigned int Full = 255;
  const unsigned int uncovered = Full - (pixel >> 24);
  for (int channel = 0; channel < 3; ++channel) {
    const unsigned int over = (pixel >> (16 - 8 * channel)) & Full;
    under[channel] =
        static_cast<uchar>(std::min(Full, over + (under[channel] * uncovered + Full / 2) / Full));
  }
}

}  // namespace

void DrawPointer(const XConnection& connection, const cv::Point& origin, cv::Mat& capture) {
  if (!connection.AgreeOn(xcb_xfixes_id, xcb_xfixes_query_version, xcb_xfixes_query_version_reply,
                          XCB_XFIXES_MAJOR_VERSION, XCB_XFIXES_MINOR_VERSION)) {
    return;
  }
  const auto pointer =
      connection.Ask(xcb_xfixes_get_cursor_image, xcb_xfixes_get_cursor_image_reply);
  if (!pointer) {
    return;
  }
  const cv::Rect area(cv::Point(pointer->x - pointer->xhot, pointer->y - pointer->yhot) - origin,
                      cv::Size(pointer->width, pointer->height));
  const std::uint32_t* const pixels = xcb_xfixes_get_cursor_image_cursor_image(pointer.get());
  const cv::Rect inside = area & cv::Rect({}, capture.size());
  for (int row = inside.y; row < inside.br().y; ++row) {
    for (int column = inside.x; column < inside.br().x; ++column) {
      Lay(pixels[(row - area.y) * area.width + column - area.x],
          capture.at<cv::Vec4b>(row, column));
    }
  }
}

}  // namespace ScrollingCapture::Live
