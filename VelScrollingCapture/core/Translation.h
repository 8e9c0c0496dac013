#pragma once

#include <cstdint>
#include <iosfwd>

#include <VelScrollingCapture/core/Export.h>

namespace ScrollingCapture {

/// How far the content moved from one capture to the next, in whole pixels.
///
/// Content that moved up (what scrolling down does) has negative rows, content that moved left has
/// negative columns. The next capture's place in the stitched image is therefore the previous one's
/// minus the translation. A value type: copies are independent, and any thread may read one.
class VEL_EXPORT Translation {
 public:
  /// No motion: zero rows and zero columns.
  Translation() = default;

  /// A motion of `rows` pixel rows (positive: down) and `cols` pixel columns (positive: right).
  Translation(int rows, int cols);

  /// The vertical motion in pixel rows.
  int GetRows() const;

  /// The horizontal motion in pixel columns.
  int GetCols() const;

  /// True when both rows and columns are equal.
  bool operator==(const Translation& other) const;

  /// True when rows or columns differ.
  bool operator!=(const Translation& other) const;

 private:
  std::int32_t rows = 0;
  std::int32_t cols = 0;
};

/// Writes "(rows, cols)", without an end of line.
VEL_EXPORT std::ostream& operator<<(std::ostream& stream, const Translation& translation);

}  // namespace ScrollingCapture
