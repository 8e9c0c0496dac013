#pragma once

#include <cstddef>
#include <cstdint>

namespace ScrollingCapture {

/// Writes 1 for every pixel that differs between two rows, 0 for the others.
/// @param pixelBytes bytes of a pixel, 1 to 4
/// @return whether any pixel differs
bool MarkDifferences(const std::uint8_t* first, const std::uint8_t* second, size_t count,
                     size_t pixelBytes, std::uint8_t* differs);

/// The bytes of a pixel as a number, equal for equal pixels only.
std::uint32_t PixelValue(const std::uint8_t* pixel, size_t pixelBytes);

}  // namespace ScrollingCapture
