#pragma once

namespace ScrollingCapture {

/// Where the top-left pixel of a capture lies, in pixels: rows grow downwards, columns to the right.
struct Place {
  int row = 0;
  int column = 0;
};

constexpr bool operator==(const Place& left, const Place& right) {
  return left.row == right.row && left.column == right.column;
}

constexpr bool operator!=(const Place& left, const Place& right) { return !(left == right); }

}  // namespace ScrollingCapture
