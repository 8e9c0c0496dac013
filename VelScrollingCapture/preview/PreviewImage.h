#pragma once

#include <memory>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/core/Export.h>
#include <VelScrollingCapture/core/Translation.h>
#include <VelScrollingCapture/detection/phase/PhaseCorrelationTranslationDetector.h>

namespace ScrollingCapture {

/// What shows where no capture lies on a preview: opaque black.
inline const cv::Scalar PreviewBackground(0, 0, 0, 255);

/// `image` scaled to exactly `size` with bilinear interpolation. Throws cv::Exception for an empty
/// image or size.
VEL_EXPORT cv::Mat ResizeImage(const cv::Mat& image, const cv::Size& size);

/// A small picture of the stitch that grows while captures still arrive.
///
/// Each capture is shrunk to a width of 250 pixels, its motion since the capture before is detected
/// at once, and it is laid onto a canvas with the seams of the final stitch. The canvas grows on
/// whichever side a capture sticks out, and never shrinks; a new run needs a new preview. Not
/// locked: calls on one preview must not overlap. No operation writes messages of its own.
class VEL_EXPORT PreviewImage {
 public:
  /// A canvas of 750 x 750 pixels; the first capture will lie at column 250, row 250.
  PreviewImage();

  /// A canvas of `size`; the first capture will lie with its top-left corner at `column`, `row`,
  /// which may be outside the canvas. Throws cv::Exception when the canvas cannot be allocated.
  PreviewImage(cv::Size size, int row, int column);

  virtual ~PreviewImage();

  PreviewImage(const PreviewImage&) = delete;
  PreviewImage& operator=(const PreviewImage&) = delete;

  /// Adds the next capture, which is left as it is.
  ///
  /// The first capture that is laid decides the size to which all are shrunk, whatever their own: a
  /// width of 250 and a height that keeps its aspect.
  /// @param capture CV_8UC4: red, green, blue, alpha
  /// @return 0 when the capture was laid onto the canvas; 1 when it did not move since the one
  ///         before and was ignored; 3 when OpenCV failed (an empty capture, one of another type, a
  ///         canvas that cannot grow, memory that runs out): the preview is then as it was, and the
  ///         next capture, which may be the same one again, is compared with the last one laid
  int AddCapture(const cv::Mat& capture);

  /// A copy of the canvas, CV_8UC4. Throws cv::Exception when memory runs out.
  cv::Mat GetPreview();

  /// A copy of the canvas, scaled down to fit into a box with its aspect kept; a canvas that fits
  /// keeps its size. Throws cv::Exception when the box leaves less than one pixel, and when memory
  /// runs out.
  /// @param maxWidth  the box's width in pixels
  /// @param maxHeight the box's height in pixels
  cv::Mat GetPreview(int maxWidth, int maxHeight);

 protected:
  /// Grows the canvas as far as needed and lays one shrunk capture onto it.
  /// @param capture     written in place: what its seam cuts off turns transparent, except in the
  ///                    first capture, which is laid whole
  /// @param placement   where it lies on the canvas: x is a column, y a row
  /// @param translation the motion of the content since the capture before
  /// @return 0, or 3 when OpenCV failed; the canvas is then as it was
  int UpdatePreview(cv::Mat& capture, cv::Rect placement, const Translation& translation);

 private:
  std::shared_ptr<cv::Mat> preview;
  std::shared_ptr<cv::Mat> lastCapture;
  PhaseCorrelationTranslationDetector detector;
  std::shared_ptr<cv::Rect> placement;
};

}  // namespace ScrollingCapture
