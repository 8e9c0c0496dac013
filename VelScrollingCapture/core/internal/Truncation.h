#pragma once

#include <limits>

namespace ScrollingCapture {

/// `value` truncated toward zero. What no int can hold gives the nearest int, and what is not a
/// number gives 0, where a plain conversion would be undefined.
constexpr int TruncateToInt(double value) {
  constexpr auto Lowest = std::numeric_limits<int>::min();
  constexpr auto Highest = std::numeric_limits<int>::max();
  if (value >= static_cast<double>(Highest)) {
    return Highest;
  }
  if (value <= static_cast<double>(Lowest)) {
    return Lowest;
  }
  const bool isNumber = value == value;
  return isNumber ? static_cast<int>(value) : 0;
}

}  // namespace ScrollingCapture
