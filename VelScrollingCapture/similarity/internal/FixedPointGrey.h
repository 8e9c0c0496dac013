#pragma once

#include <cstddef>
#include <cstdint>

namespace ScrollingCapture {

/// Sums up how far the grey levels of two rows of RGBA pixels lie apart, pixel by pixel. A grey
/// level is ITU-R BT.601 luma in fixed point with 15 fractional bits, rounded.
///
/// @param first,second  the rows, of `bytes` bytes each, four bytes a pixel, aligned in any way
std::uint64_t SumOfFixedPointGreyDifferences(const unsigned char* first,
                                             const unsigned char* second, std::size_t bytes);

}  // namespace ScrollingCapture
