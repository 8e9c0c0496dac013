#pragma once

#include <cstdint>
#include <memory>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/borders/BorderDetection.h>
#include <VelScrollingCapture/core/Export.h>

namespace ScrollingCapture {

/// Finds fixed borders by comparing consecutive captures, and lays them around the stitched content
/// as the first capture shows them.
///
/// The content box is the rectangle that encloses every pixel that changed between two consecutive
/// captures; what lies outside it is border. A pixel changed when its grey values differ by more
/// than the difference threshold, and counts when more than the neighbour threshold of the eight
/// pixels around it changed too. The first capture's part outside the box becomes the borders:
///
///     +-----------------------+
///     |          top          |    top and bottom span the width of a capture,
///     +------+---------+------+
///     | left | content | right|    left and right the height of the content box
///     +------+---------+------+
///     |        bottom         |
///     +-----------------------+
///
/// The borders are laid once, neither stretched nor repeated. What neither content nor border
/// covers is transparent: beside content taller than the content box, below the side borders;
/// above and below content wider than it, right of the top and bottom borders.
///
/// A border is kept until a later stitch with the same object finds that border anew, and is laid
/// around the results in between as well. Use a new object for a sequence of another window.
///
/// Ranges are half open and count the pixels of a capture. Except where told otherwise a failure is
/// a false result with one line on the standard error stream, or on the standard output stream when
/// there is just no border.
class VEL_EXPORT BasicBorderDetection : public BorderDetection {
 public:
  /// @param stitcher
  ///        stitches what is inside the borders, never null; ownership is shared
  /// @param differenceThreshold
  ///        the grey-level difference, from 0 to 255, that a changed pixel exceeds; with 255 or
  ///        more no pixel ever changes
  /// @param neighborThreshold
  ///        the number of changed neighbours, from 0 to 8, that content exceeds; with 8 or more
  ///        there never is content
  BasicBorderDetection(std::shared_ptr<IStitcher> stitcher, unsigned int differenceThreshold,
                       unsigned int neighborThreshold);

 protected:
  /// Keeps the borders of the first capture, and replaces each capture by a copy of its part inside
  /// the content box; the pixels of the matrices that were replaced stay as they are.
  ///
  /// Memory that runs out is told by OpenCV's exception, except while captures are compared, where
  /// it counts as a boundary that was not found. When it runs out while the captures are replaced,
  /// those before are replaced already, each of them whole: stitch the original captures again.
  bool ExtractBorders(IImageProvider& images) override;

  /// Replaces `image`, of any type, by a larger frame of its type with the kept borders around it.
  bool ApplyBorders(cv::Mat& image) override;

  /// Finds the content box from each capture's difference to the one before it.
  ///
  /// Captures that cannot be compared, such as two of different sizes or for want of memory, count
  /// as a boundary that was not found.
  /// @param provider    the captures, at least two; they are only read
  /// @param captureSize the size of the first capture
  /// @param rows        receives the rows of the content box; undefined on failure
  /// @param columns     receives its columns; undefined on failure
  virtual bool FindContent(IImageProvider& provider, const cv::Size& captureSize, cv::Range& rows,
                           cv::Range& columns);

  /// Keeps copies of what lies outside the content box. A border that the box leaves no room for
  /// keeps what it held.
  /// @param image   the first capture
  /// @param rows    the rows of the content box
  /// @param columns its columns
  /// @return whether any border is kept, be it from an earlier run
  virtual bool CopyBorders(const cv::Mat& image, const cv::Range& rows, const cv::Range& columns);

  /// Lays the borders in the frame. What would reach outside the frame is left out, and so is a
  /// border of another type than the frame.
  /// @param rows    the rows of the content in the frame
  /// @param columns its columns
  /// @param frame   written in place
  /// @return true
  virtual bool AddBorders(const cv::Range& rows, const cv::Range& columns, cv::Mat& frame);

  /// Moves the starts of the ranges up and left to enclose the content of one difference image.
  ///
  /// @param difference absolute grey-level differences, CV_8UC1
  /// @param rows       only its start is read and written; any value will do
  /// @param columns    likewise
  /// @return whether the image has a row at or below the start of the rows, as it then is
  bool FindTopAndLeftContentBoundary(cv::Mat& difference, cv::Range& rows, cv::Range& columns);

  /// Moves the ends of the ranges down and right to enclose the content of one difference image.
  ///
  /// The ends are exclusive, but are compared as if they were inclusive: content in the row or
  /// column just behind the box does not extend it.
  /// @param difference absolute grey-level differences, CV_8UC1
  /// @param rows       only its end is read and written; any value will do
  /// @param columns    likewise
  /// @return whether the image has a row at or above the end of the rows, as it was or then is
  bool FindBottomAndRightContentBoundary(cv::Mat& difference, cv::Range& rows, cv::Range& columns);

  /// Tells whether enough of the pixels around a pixel changed. The pixel itself is not looked at,
  /// and there are none outside the image.
  /// @param difference absolute grey-level differences, CV_8UC1
  /// @param row        of a pixel of the image
  /// @param column     of a pixel of the image
  /// @param isContent  receives the answer
  /// @return false when the image has fewer than two rows or columns; `isContent` is then untouched
  bool CheckNearestNeighbors(const cv::Mat& difference, int row, int column, bool& isContent) const;

  /// Finds the size of the frame that has room for the content and the kept borders.
  /// @param contentSize the size of the stitched content
  /// @param finalSize   receives the size of the frame
  /// @param rows        receives the rows of the content in the frame
  /// @param columns     receives its columns
  void CalculateFinalImageSize(const cv::Size& contentSize, cv::Size& finalSize, cv::Range& rows,
                               cv::Range& columns);

  std::uint32_t differenceThreshold;  ///< What a changed pixel exceeds.
  std::uint32_t neighborThreshold;    ///< What the changed neighbours of content exceed.
  // Never null; empty until the border is found.
  std::shared_ptr<cv::Mat> topBorder;     ///< Rows above the content box.
  std::shared_ptr<cv::Mat> bottomBorder;  ///< Rows below it.
  std::shared_ptr<cv::Mat> leftBorder;    ///< Columns left of it.
  std::shared_ptr<cv::Mat> rightBorder;   ///< Columns right of it.

 private:
  bool HasBorder() const;

  /// @return false, with a line on the standard error stream, when neighbours cannot be counted
  bool ConfirmContent(const cv::Mat& difference, int row, int column) const;
};

}  // namespace ScrollingCapture
