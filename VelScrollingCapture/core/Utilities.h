#pragma once

#include <random>
#include <string>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/core/Export.h>
#include <VelScrollingCapture/core/Translation.h>

namespace ScrollingCapture {

/// Operations on captures, and random names. Captures are 8-bit matrices with the channels red,
/// green, blue, alpha; "transparent" means that all four channels are 0.
///
/// Every operation that takes a non-const matrix writes into its pixels, which every other header
/// over the same pixels sees too. Faults are told on the standard error stream and leave the images
/// as they were. Safe from any thread as long as no two calls write to the same pixels.
class VEL_EXPORT Utilities {
 public:
  Utilities() = delete;

  /// The digits, then the upper-case and the lower-case letters of ASCII.
  static const std::string ALPHANUMERIC_CHARSET;

  /// What random names are drawn with, seeded from the system clock when the library is loaded. Set
  /// it only while no other thread draws names.
  static std::minstd_rand RANDOM_ENGINE;

  /// Makes row `start.y` transparent from `start.x` to the first column, or else to the last one;
  /// both ends are included.
  static void MakeRowTransparent(cv::Mat& image, const cv::Point& start, bool towardsFirstColumn);

  /// Makes column `start.x` transparent from `start.y` to the first row, or else to the last one;
  /// both ends are included.
  static void MakeColumnTransparent(cv::Mat& image, const cv::Point& start, bool towardsFirstRow);

  /// Makes everything on one side of the straight line through two points transparent, the line
  /// included.
  ///
  /// A vertical line clears what is left of it, or else right of it; any other line clears what is
  /// above it, or else below it. A slanted line is walked column by column in single precision, and
  /// goes on along the border that it meets first until it has met a second one; the pixels that it
  /// touches on the way turn transparent as well.
  /// @param image         written in place
  /// @param first         a point of the line, inside the image
  /// @param second        another point of the line, inside the image
  /// @param towardsOrigin true to clear the side of the first rows or columns
  static void ClipCorner(cv::Mat& image, const cv::Point& first, const cv::Point& second,
                         bool towardsOrigin);

  /// Makes the part of a capture transparent that must not win over the capture before it.
  ///
  /// The seam of a straight scroll lies in the middle of the overlap, that of a scroll in both
  /// directions on the diagonal of the overlap. A translation that leaves no overlap leaves the
  /// capture as it is, with a message.
  /// @param capture     written in place
  /// @param translation the motion of the content from the capture before to this one
  /// @param captureSize only its width (columns) and height (rows) are read
  static void CropCaptureImage(cv::Mat& capture, const Translation& translation,
                               const cv::Rect& captureSize);

  /// Copies every pixel of `source` whose alpha is not 0 into a block of `target`.
  ///
  /// All four channels are copied; there is no weighted blending.
  /// @param source        the image to lay
  /// @param target        written in place
  /// @param targetRows    the block's rows, as many as `source` has
  /// @param targetColumns the block's columns, as many as `source` has
  static void BlendImages(const cv::Mat& source, cv::Mat& target, const cv::Range& targetRows,
                          const cv::Range& targetColumns);

  /// How alike two captures are: 1 minus the mean absolute difference of their grey levels, as a
  /// fraction of the full range.
  ///
  /// Alpha is ignored. Throws cv::Exception for captures of different sizes, empty captures and
  /// captures of fewer than three channels.
  /// @return 1 for equal grey levels down to 0 when every pixel differs by the full range
  static double CalculateSimilarity(const cv::Mat& first, const cv::Mat& second);

  /// Draws each character of a name from ALPHANUMERIC_CHARSET with RANDOM_ENGINE. Safe from any
  /// number of threads at once. Not for secrets: who knows one name can tell the next.
  static std::string GenerateRandomAlphanumericString(unsigned int length);
};

}  // namespace ScrollingCapture
