#include <algorithm>
#include <cstring>

#include <opencv2/core/hal/intrin.hpp>

#include <VelScrollingCapture/mosaic/internal/PixelComparison.h>

namespace ScrollingCapture {
namespace {

/// Pixels that are compared at once.
constexpr size_t Wide = cv::v_uint8x16::nlanes;

/// All bits of the bytes of pixels that are equal, for each kind of pixel.
template <size_t PixelBytes>
cv::v_uint8x16 EqualPixels(const std::uint8_t* first, const std::uint8_t* second);

template <>
cv::v_uint8x16 EqualPixels<1>(const std::uint8_t* first, const std::uint8_t* second) {
  return cv::v_load(first) == cv::v_load(second);
}

template <>
cv::v_uint8x16 EqualPixels<2>(const std::uint8_t* first, const std::uint8_t* second) {
  const auto equal = [&](size_t part) {
    return cv::v_reinterpret_as_u16(cv::v_load(first + part * Wide)) ==
           cv::v_reinterpret_as_u16(cv::v_load(second + part * Wide));
  };
  return cv::v_pack_b(equal(0), equal(1));
}

template <>
cv::v_uint8x16 EqualPixels<3>(const std::uint8_t* first, const std::uint8_t* second) {
  cv::v_uint8x16 left[3];
  cv::v_uint8x16 right[3];
  cv::v_load_deinterleave(first, left[0], left[1], left[2]);
  cv::v_load_deinterleave(second, right[0], right[1], right[2]);
  return (left[0] == right[0]) & (left[1] == right[1]) & (left[2] == right[2]);
}

template <>
cv::v_uint8x16 EqualPixels<4>(const std::uint8_t* first, const std::uint8_t* second) {
  const auto equal = [&](size_t part) {
    return cv::v_reinterpret_as_u32(cv::v_load(first + part * Wide)) ==
           cv::v_reinterpret_as_u32(cv::v_load(second + part * Wide));
  };
  return cv::v_pack_b(equal(0), equal(1), equal(2), equal(3));
}

template <size_t PixelBytes>
void MarkPixels(const std::uint8_t* first, const std::uint8_t* second, size_t count,
                std::uint8_t* differs) {
  const cv::v_uint8x16 one = cv::v_setall_u8(1);
  size_t i = 0;
  for (; i + Wide <= count; i += Wide) {
    const auto equal = EqualPixels<PixelBytes>(first + PixelBytes * i, second + PixelBytes * i);
    cv::v_store(differs + i, ~equal & one);
  }
  for (; i < count; ++i) {
    differs[i] = std::memcmp(first + PixelBytes * i, second + PixelBytes * i, PixelBytes) != 0;
  }
}

}  // namespace

bool MarkDifferences(const std::uint8_t* first, const std::uint8_t* second, size_t count,
                     size_t pixelBytes, std::uint8_t* differs) {
  if (std::memcmp(first, second, count * pixelBytes) == 0) {
    std::fill_n(differs, count, std::uint8_t{0});
    return false;
  }
  switch (pixelBytes) {
    case 1:
      MarkPixels<1>(first, second, count, differs);
      break;
    case 2:
      MarkPixels<2>(first, second, count, differs);
      break;
    case 3:
      MarkPixels<3>(first, second, count, differs);
      break;
    default:
      MarkPixels<4>(first, second, count, differs);
  }
  return true;
}

void ReadPixelValues(const std::uint8_t* pixels, size_t count, size_t pixelBytes,
                     std::uint32_t* values) {
  if (pixelBytes == sizeof *values) {
    std::memcpy(values, pixels, count * sizeof *values);
    return;
  }
  for (size_t i = 0; i < count; ++i) {
    values[i] = 0;
    std::memcpy(&values[i], pixels + pixelBytes * i, pixelBytes);
  }
}

/// By the vote of R. S. Boyer and J S. Moore, "MJRTY - A Fast Majority Vote Algorithm" (1981).
std::optional<std::uint32_t> PrevailingValue(const std::uint32_t* begin, const std::uint32_t* end) {
  std::uint32_t candidate = 0;
  std::ptrdiff_t lead = 0;
  for (const std::uint32_t* value = begin; value != end; ++value) {
    candidate = lead == 0 ? *value : candidate;
    lead += *value == candidate ? 1 : -1;
  }
  const bool prevails = 2 * std::count(begin, end, candidate) > end - begin;
  return prevails ? std::optional(candidate) : std::nullopt;
}

}  // namespace ScrollingCapture
