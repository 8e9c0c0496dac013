#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/core/Export.h>
#include <VelScrollingCapture/core/Translation.h>

namespace ScrollingCapture {

/// A straight line across a capture, and the side of it that the capture gives up together with the
/// line. A vertical line has the first columns on its one side; any other line the first rows.
struct CutLine {
  cv::Point first;             ///< A point of the line: x is its column, y its row.
  cv::Point second;            ///< Another one; equal points make a vertical line.
  bool towardsOrigin = false;  ///< Whether the side of the first rows or columns is given up.
};

/// The line along which a capture is cut, so that it does not win over the capture before it.
///
/// That of a straight scroll lies in the middle of their overlap, that of a scroll in both
/// directions on the diagonal of the overlap. Without an overlap a point of it lies outside the
/// capture.
/// @param translation the motion of the content from the capture before to this one
/// @param captureSize the size of both in pixels
VEL_EXPORT CutLine CutLineOf(const Translation& translation, const cv::Size& captureSize);

/// What a capture keeps of its pixels when it is cut: in every row one run of columns. A value: any
/// thread may read one.
class VEL_EXPORT Seam {
 public:
  /// The seam of a cut along a line.
  ///
  /// A slanted line is walked column by column in single precision, and goes on along the border
  /// that it meets first until it has met a second one; the pixels that it touches on the way are
  /// given up as well.
  /// @param line  where to cut
  /// @param image the size in pixels of the image that is cut
  /// @return nothing when a point of the line lies outside the image
  static std::optional<Seam> Along(const CutLine& line, const cv::Size& image);

  /// The columns that are kept of a row of the image; an empty range when there are none.
  const cv::Range& KeptColumns(int row) const { return keptColumns[static_cast<size_t>(row)]; }

 private:
  explicit Seam(std::vector<cv::Range> keptColumns);

  std::vector<cv::Range> keptColumns;  // of every row
};

}  // namespace ScrollingCapture
