#include <cstring>

#include <VelScrollingCapture/matching/internal/PixelKeys.h>

namespace ScrollingCapture {
namespace {

constexpr std::uint32_t AlphaBits = 0xFF000000U;

std::uint32_t LoadPixel(const unsigned char* pixel) {
  std::uint32_t key = 0;
  std::memcpy(&key, pixel, sizeof key);
  return key;
}

/// The alpha is the last of four bytes, wherever that is in a number.
std::uint32_t AlphaMask() {
  constexpr unsigned char Opaque[] = {0, 0, 0, 255};
  return LoadPixel(Opaque);
}

bool HasColouredTransparentPixels(const cv::Mat& capture) {
  const std::uint32_t alpha = AlphaMask();
  for (int row = 0; row < capture.rows; ++row) {
    const auto* const pixels = capture.ptr<unsigned char>(row);
    unsigned found = 0;
    for (int column = 0; column < capture.cols; ++column) {
      const std::uint32_t pixel = LoadPixel(pixels + std::size_t{4} * column);
      found |= static_cast<unsigned>((pixel & alpha) == 0) & static_cast<unsigned>(pixel != 0);
    }
    if (found != 0) {
      return true;
    }
  }
  return false;
}

}  // namespace

void WritePixelKeys(const unsigned char* pixels, int channels, int count, std::uint32_t* keys) {
  if (channels == 4) {
    const std::uint32_t alpha = AlphaMask();
    for (int i = 0; i < count; ++i) {
      const std::uint32_t pixel = LoadPixel(pixels + std::size_t{4} * i);
      keys[i] = (pixel & alpha) == 0 ? 0 : pixel;
    }
  } else if (channels == 3) {
    for (int i = 0; i < count; ++i) {
      const unsigned char* const pixel = pixels + std::size_t{3} * i;
      keys[i] = AlphaBits | std::uint32_t{pixel[0]} | std::uint32_t{pixel[1]} << 8 |
                std::uint32_t{pixel[2]} << 16;
    }
  } else {
    for (int i = 0; i < count; ++i) {
      keys[i] = AlphaBits | std::uint32_t{pixels[i]};
    }
  }
}

cv::Mat PixelKeysOf(const cv::Mat& capture) {
  if (capture.channels() == 4 && !HasColouredTransparentPixels(capture)) {
    return {capture.rows, capture.cols, CV_32SC1, const_cast<unsigned char*>(capture.data),
            capture.step[0]};
  }
  cv::Mat keys(capture.size(), CV_32SC1);
  for (int row = 0; row < capture.rows; ++row) {
    WritePixelKeys(capture.ptr<unsigned char>(row), capture.channels(), capture.cols,
                   keys.ptr<std::uint32_t>(row));
  }
  return keys;
}

}  // namespace ScrollingCapture
