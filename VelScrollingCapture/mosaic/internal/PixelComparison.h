#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

namespace ScrollingCapture {

/// Writes 1 for every pixel that differs between two rows, 0 for the others.
/// @param pixelBytes bytes of a pixel, 1 to 4
/// @return whether any pixel differs
bool MarkDifferences(const std::uint8_t* first, const std::uint8_t* second, size_t count,
                     size_t pixelBytes, std::uint8_t* differs);

/// The bytes of each pixel as a number, equal for equal pixels only.
/// @param pixelBytes bytes of a pixel, 1 to 4
void ReadPixelValues(const std::uint8_t* pixels, size_t count, size_t pixelBytes,
                     std::uint32_t* values);

/// The value of more than half of some pixels.
std::optional<std::uint32_t> PrevailingValue(const std::uint32_t* begin, const std::uint32_t* end);

}  // namespace ScrollingCapture
