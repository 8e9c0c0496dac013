#pragma once

#include <opencv2/core.hpp>

namespace ScrollingCapture {

/// A buffer for spectra of real rows, which reads as OpenCV's packed numbers and as complex
/// numbers.
///
/// For a row of real numbers cv::dft leaves out the imaginary parts that are always 0 and
/// everything beyond the middle: re0, re1, im1, re2, im2, ... The buffer holds this from its second
/// float on, so that the pairs already lie where complex numbers have them; only the first and, for
/// an even width, the last number need their imaginary part put in.
class PackedRows {
 public:
  PackedRows(int rows, int width) : width(width), buffer(rows, ComplexColumns(width), CV_32FC2) {}

  /// The first rows as packed real numbers: `width` floats each (CV_32FC1).
  cv::Mat Packed(int rows) const {
    return cv::Mat(buffer.rows, 2 * buffer.cols, CV_32FC1, buffer.data,
                   buffer.step)(cv::Rect(1, 0, width, rows));
  }

  /// The first rows as width / 2 + 1 complex numbers each (CV_32FC2).
  cv::Mat Complex(int rows) const { return buffer.rowRange(0, rows); }

  /// Makes complex numbers of what was written to Packed().
  void Unpack() {
    for (int row = 0; row < buffer.rows; ++row) {
      auto* const values = buffer.ptr<float>(row);
      values[0] = values[1];
      values[1] = 0.0F;
      if (width % 2 == 0) {
        values[width + 1] = 0.0F;
      }
    }
  }

  /// Makes packed numbers of what was written to Complex(), leaving out the first imaginary part.
  void Pack() {
    for (int row = 0; row < buffer.rows; ++row) {
      auto* const values = buffer.ptr<float>(row);
      values[1] = values[0];
    }
  }

 private:
  static int ComplexColumns(int width) { return width / 2 + 1; }

  int width;
  cv::Mat buffer;
};

}  // namespace ScrollingCapture
