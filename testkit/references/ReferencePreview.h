#pragma once

#include <algorithm>

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include <VelScrollingCapture/core/Utilities.h>
#include <VelScrollingCapture/detection/phase/PhaseCorrelationTranslationDetector.h>

namespace ScrollingCapture::Testing {

/// The preview told step by step, without sharing any step with the library's: what PreviewImage
/// has to equal bit for bit. Captures must be sound.
class ReferencePreview {
 public:
  ReferencePreview(const cv::Size& size, int row, int column)
      : canvas(size, CV_8UC4, cv::Scalar(0, 0, 0, 255)), x(column), y(row) {}

  int AddCapture(const cv::Mat& capture) {
    if (width * height < 1) {
      width = 250;
      height = static_cast<int>(static_cast<double>(capture.rows) /
                                static_cast<double>(capture.cols) * 250.0);
    }
    cv::Mat shrunk;
    cv::resize(capture, shrunk, cv::Size(width, height), 0, 0, cv::INTER_LINEAR);
    if (!hasLast) {
      Lay(shrunk, Translation(0, 0));
    } else {
      const Translation moved = detector.DetectTranslation(last, shrunk);
      if (moved.GetRows() == 0 && moved.GetCols() == 0) {
        return 1;
      }
      x -= moved.GetCols();
      y -= moved.GetRows();
      Lay(shrunk, moved);
    }
    last = shrunk;
    hasLast = true;
    return 0;
  }

  cv::Mat canvas;
  int x;
  int y;

 private:
  void Lay(cv::Mat& shrunk, const Translation& moved) {
    const int rows = canvas.rows;
    const int columns = canvas.cols;
    // What sticks out at the far side is measured on the canvas before it grew.
    if (y < 0) {
      Grow(-y, std::max(height - rows, 0), 0, 0);
      y = 0;
    } else {
      Grow(0, std::max(y + height - rows, 0), 0, 0);
    }
    if (x < 0) {
      Grow(0, 0, -x, std::max(width - columns, 0));
      x = 0;
    } else {
      Grow(0, 0, 0, std::max(x + width - columns, 0));
    }
    if (hasLast) {
      Utilities::CropCaptureImage(shrunk, moved, cv::Rect(x, y, width, height));
    }
    for (int row = 0; row < height; ++row) {
      for (int column = 0; column < width; ++column) {
        const auto& pixel = shrunk.at<cv::Vec4b>(row, column);
        if (pixel[3] != 0) {
          canvas.at<cv::Vec4b>(y + row, x + column) = pixel;
        }
      }
    }
  }

  void Grow(int top, int bottom, int left, int right) {
    cv::copyMakeBorder(canvas.clone(), canvas, top, bottom, left, right, cv::BORDER_CONSTANT,
                       cv::Scalar(0, 0, 0, 255));
  }

  int width = 0;
  int height = 0;
  bool hasLast = false;
  cv::Mat last;
  PhaseCorrelationTranslationDetector detector{ScrollOrientation::Both, false, 1};
};

}  // namespace ScrollingCapture::Testing
