#include <algorithm>
#include <cstring>

#include <VelScrollingCapture/mosaic/internal/PixelComparison.h>

namespace ScrollingCapture {
namespace {

void MarkBytes(const std::uint8_t* first, const std::uint8_t* second, size_t count,
               std::uint8_t* differs) {
  for (size_t i = 0; i < count; ++i) {
    differs[i] = first[i] != second[i];
  }
}

void MarkWords(const std::uint8_t* first, const std::uint8_t* second, size_t count,
               std::uint8_t* differs) {
  for (size_t i = 0; i < count; ++i) {
    std::uint32_t left = 0;
    std::uint32_t right = 0;
    std::memcpy(&left, first + 4 * i, 4);
    std::memcpy(&right, second + 4 * i, 4);
    differs[i] = left != right;
  }
}

void MarkPixels(const std::uint8_t* first, const std::uint8_t* second, size_t count,
                size_t pixelBytes, std::uint8_t* differs) {
  for (size_t i = 0; i < count; ++i) {
    differs[i] = std::memcmp(first + pixelBytes * i, second + pixelBytes * i, pixelBytes) != 0;
  }
}

}  // namespace

bool MarkDifferences(const std::uint8_t* first, const std::uint8_t* second, size_t count,
                     size_t pixelBytes, std::uint8_t* differs) {
  if (std::memcmp(first, second, count * pixelBytes) == 0) {
    std::fill_n(differs, count, std::uint8_t{0});
    return false;
  }
  if (pixelBytes == 4) {
    MarkWords(first, second, count, differs);
  } else if (pixelBytes == 1) {
    MarkBytes(first, second, count, differs);
  } else {
    MarkPixels(first, second, count, pixelBytes, differs);
  }
  return true;
}

std::uint32_t PixelValue(const std::uint8_t* pixel, size_t pixelBytes) {
  std::uint32_t value = 0;
  std::memcpy(&value, pixel, pixelBytes);
  return value;
}

}  // namespace ScrollingCapture
