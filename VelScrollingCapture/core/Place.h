#pragma once

namespace ScrollingCapture {

/// Where the top-left pixel of a capture lies, in pixels: rows grow downwards, columns to the
/// right.
struct Place {
  int row = 0;     ///< Of its first row.
  int column = 0;  ///< Of its first column.
};

/// True when both name the same pixel.
constexpr bool operator==(const Place& left, const Place& right) {
  return left.row == right.row && left.column == right.column;
}

/// True when they differ in row or column.
constexpr bool operator!=(const Place& left, const Place& right) { return !(left == right); }

}  // namespace ScrollingCapture
