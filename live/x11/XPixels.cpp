#include <string>

#include <live/x11/XPixels.h>

namespace ScrollingCapture::Live {
namespace {

constexpr int BitsOfPixel = 32;
constexpr int BitsOfColour = 8;

const xcb_visualtype_t* FindVisual(const xcb_screen_t& screen, xcb_visualid_t visual) {
  for (auto depths = xcb_screen_allowed_depths_iterator(&screen); depths.rem > 0;
       xcb_depth_next(&depths)) {
    for (auto visuals = xcb_depth_visuals_iterator(depths.data); visuals.rem > 0;
         xcb_visualtype_next(&visuals)) {
      if (visuals.data->visual_id == visual) {
        return visuals.data;
      }
    }
  }
  return nullptr;
}

int BitsPerPixel(const XConnection& connection, std::uint8_t depth) {
  for (auto formats = xcb_setup_pixmap_formats_iterator(xcb_get_setup(connection.Get()));
       formats.rem > 0; xcb_format_next(&formats)) {
    if (formats.data->depth == depth) {
      return formats.data->bits_per_pixel;
    }
  }
  return 0;
}

/// The lowest of the mask's 8 most significant bits; negative when it has fewer.
int UpperBits(std::uint32_t mask) {
  int end = BitsOfPixel;
  while (end > 0 && (mask >> (end - 1)) == 0) {
    --end;
  }
  int begin = end;
  while (begin > 0 && ((mask >> (begin - 1)) & 1U) != 0) {
    --begin;
  }
  return end - begin < BitsOfColour ? -1 : end - BitsOfColour;
}

std::uint32_t Swapped(std::uint32_t pixel) {
  return (pixel >> 24) | ((pixel >> 8) & 0xFF00U) | ((pixel << 8) & 0xFF0000U) | (pixel << 24);
}

template <bool IsSwapped>
void ConvertRow(const std::uint32_t* from, const XPixels& pixels, std::uint32_t* to, int count) {
  constexpr std::uint32_t Opaque = 0xFF000000U;
  constexpr std::uint32_t Colour = 0xFFU;
  for (int i = 0; i < count; ++i) {
    const std::uint32_t pixel = IsSwapped ? Swapped(from[i]) : from[i];
    to[i] = Opaque | ((pixel >> pixels.red) & Colour) | (((pixel >> pixels.green) & Colour) << 8) |
            (((pixel >> pixels.blue) & Colour) << 16);
  }
}

}  // namespace

XPixels::XPixels(const XConnection& connection, std::uint8_t depth, xcb_visualid_t visual) {
  const xcb_visualtype_t* const type = FindVisual(connection.Screen(), visual);
  if (type != nullptr) {
    red = UpperBits(type->red_mask);
    green = UpperBits(type->green_mask);
    blue = UpperBits(type->blue_mask);
  }
  if (type == nullptr || red < 0 || green < 0 || blue < 0 ||
      BitsPerPixel(connection, depth) != BitsOfPixel) {
    throw CaptureFailure("the screen has a depth of " + std::to_string(depth) +
                         " bits; 24 or 30 are needed");
  }
  const std::uint32_t probe = 1;
  const bool isLittle = *reinterpret_cast<const std::uint8_t*>(&probe) == 1;
  isSwapped =
      (xcb_get_setup(connection.Get())->image_byte_order == XCB_IMAGE_ORDER_LSB_FIRST) != isLittle;
}

void ConvertPixels(const std::uint32_t* rows, const XPixels& pixels, cv::Mat& target) {
  for (int row = 0; row < target.rows; ++row) {
    const std::uint32_t* const from =
        rows + static_cast<std::size_t>(row) * static_cast<std::size_t>(target.cols);
    auto* const to = reinterpret_cast<std::uint32_t*>(target.ptr(row));
    if (pixels.isSwapped) {
      ConvertRow<true>(from, pixels, to, target.cols);
    } else {
      ConvertRow<false>(from, pixels, to, target.cols);
    }
  }
}

}  // namespace ScrollingCapture::Live
