#include "ReferenceContentBox.h"

#include <iostream>

namespace ScrollingCapture::Testing {

bool ReferenceContentBox::FindTopAndLeftContentBoundary(const cv::Mat& difference, cv::Range& rows,
                                                        cv::Range& columns) const {
  if (difference.rows < 1) {
    return false;
  }
  bool topSettled = false;
  for (int r = 0; r < difference.rows; ++r) {
    if (!topSettled && r >= rows.start) {
      topSettled = true;
    }
    for (int c = 0; c < difference.cols; ++c) {
      if (topSettled && c >= columns.start) {
        break;
      }
      bool isContent = false;
      if (!CheckPixel(difference, r, c, isContent)) {
        return false;
      }
      if (isContent && !topSettled && r < rows.start) {
        rows.start = r;
        topSettled = true;
      }
      if (isContent && c < columns.start) {
        columns.start = c;
      }
    }
  }
  return topSettled;
}

bool ReferenceContentBox::FindBottomAndRightContentBoundary(const cv::Mat& difference,
                                                            cv::Range& rows,
                                                            cv::Range& columns) const {
  if (difference.rows < 1) {
    return false;
  }
  bool bottomSettled = false;
  for (int r = difference.rows - 1; r >= 0; --r) {
    if (!bottomSettled && r <= rows.end) {
      bottomSettled = true;
    }
    for (int c = difference.cols - 1; c >= 0; --c) {
      if (bottomSettled && c <= columns.end) {
        break;
      }
      bool isContent = false;
      if (!CheckPixel(difference, r, c, isContent)) {
        return false;
      }
      if (isContent && !bottomSettled && r > rows.end) {
        rows.end = r + 1;
        bottomSettled = true;
      }
      if (isContent && c > columns.end) {
        columns.end = c + 1;
      }
    }
  }
  return bottomSettled;
}

bool ReferenceContentBox::CheckPixel(const cv::Mat& difference, int row, int column,
                                     bool& isContent) const {
  if (difference.at<uchar>(row, column) <= differenceThreshold) {
    return true;
  }
  const bool checked = CheckNearestNeighbors(difference, row, column, isContent);
  if (!checked) {
    std::cerr << "Error: Nearest neighbor detection failed." << std::endl;
  }
  return checked;
}

bool ReferenceContentBox::CheckNearestNeighbors(const cv::Mat& difference, int row, int column,
                                                bool& isContent) const {
  if (difference.rows < 2 || difference.cols < 2) {
    std::cerr << "Error: Image too small to remove border." << std::endl;
    return false;
  }
  std::uint32_t count = 0;
  for (const int r : {row - 1, row, row + 1}) {
    for (const int c : {column - 1, column, column + 1}) {
      const bool isPixelItself = r == row && c == column;
      const bool isInside = r >= 0 && c >= 0 && r < difference.rows && c < difference.cols;
      if (!isPixelItself && isInside && difference.at<uchar>(r, c) > differenceThreshold) {
        ++count;
      }
    }
  }
  isContent = count > neighborThreshold;
  return true;
}

}  // namespace ScrollingCapture::Testing
