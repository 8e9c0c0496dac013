#include <algorithm>
#include <cassert>
#include <optional>
#include <string>
#include <utility>

#include <opencv2/imgproc.hpp>

#include <VelScrollingCapture/borders/BasicBorderDetection.h>
#include <VelScrollingCapture/borders/internal/ContentSearch.h>
#include <VelScrollingCapture/core/internal/Messages.h>

namespace ScrollingCapture {
namespace {

/// Gives an empty matrix when OpenCV cannot convert the capture.
void ConvertToGrey(const cv::Mat& capture, cv::Mat& grey) {
  try {
    cv::cvtColor(capture, grey, cv::COLOR_RGBA2GRAY);
  } catch (const cv::Exception&) {
    grey.release();
  }
}

/// Gives an empty matrix, in which no boundary is found, when OpenCV cannot compare the captures.
void CompareGrey(const cv::Mat& previous, const cv::Mat& current, cv::Mat& difference) {
  try {
    cv::absdiff(previous, current, difference);
  } catch (const cv::Exception&) {
    difference.release();
  }
}

/// Replaces a kept border by a copy of `part`.
/// @return false when the part is empty
bool KeepBorder(const cv::Mat& part, const char* name, std::shared_ptr<cv::Mat>& border) {
  border = std::make_shared<cv::Mat>(part.clone());
  if (border->empty()) {
    TellError(std::string("Error: Failed to extract ") + name + " border.");
    return false;
  }
  return true;
}

/// Copies as much of the border as lies inside the frame.
void LayBorder(const cv::Mat& border, const cv::Point& corner, cv::Mat& frame) {
  const cv::Rect place = cv::Rect(corner, border.size()) & cv::Rect({}, frame.size());
  if (!place.empty()) {
    // A named block: matrices of different types then have nothing in common, and the frame stays.
    cv::Mat block = frame(place);
    border(place - corner).copyTo(block);
  }
}

}  // namespace

BasicBorderDetection::BasicBorderDetection(std::shared_ptr<IStitcher> stitcher,
                                           unsigned int differenceThreshold,
                                           unsigned int neighborThreshold)
    : BorderDetection(std::move(stitcher)),
      differenceThreshold(differenceThreshold),
      neighborThreshold(neighborThreshold),
      topBorder(std::make_shared<cv::Mat>()),
      bottomBorder(std::make_shared<cv::Mat>()),
      leftBorder(std::make_shared<cv::Mat>()),
      rightBorder(std::make_shared<cv::Mat>()) {}

bool BasicBorderDetection::ExtractBorders(IImageProvider& images) {
  if (images.Count() == 0) {
    TellError("Error: Empty image list when extracting common borders.");
    return false;
  }
  const cv::Mat reference = images.GetImageAt(0)->clone();
  cv::Range rows;
  cv::Range columns;
  if (!FindContent(images, reference.size(), rows, columns)) {
    TellInformation("No content box was found.");
    return false;
  }
  if (!CopyBorders(reference, rows, columns)) {
    TellInformation("No borders were extracted.");
    return false;
  }
  for (size_t i = 0; i < images.Count(); ++i) {
    cv::Mat content = (*images.GetImageAt(i))(rows, columns).clone();
    images.SetImageAt(i, content);
  }
  return true;
}

bool BasicBorderDetection::ApplyBorders(cv::Mat& image) {
  if (image.empty()) {
    TellError("Error: Input image is empty.");
    return false;
  }
  if (!HasBorder()) {
    TellError("Error: No border has been extracted.");
    return false;
  }
  cv::Size finalSize;
  cv::Range rows;
  cv::Range columns;
  CalculateFinalImageSize(image.size(), finalSize, rows, columns);
  cv::Mat frame;
  try {
    frame = cv::Mat::zeros(finalSize, image.type());
  } catch (const cv::Exception&) {
    TellError("Error: Insufficient memory to apply borders.");
    return false;
  }
  image.copyTo(frame(rows, columns));
  if (!AddBorders(rows, columns, frame)) {
    TellError("Error: Failed to apply borders.");
    return false;
  }
  image = frame;
  return true;
}

bool BasicBorderDetection::FindContent(IImageProvider& provider, const cv::Size& captureSize,
                                       cv::Range& rows, cv::Range& columns) {
  if (provider.Count() < 2) {
    TellError("Error: Not enough images to identify a content box.");
    return false;
  }
  // Inside out, so that whatever is found first sets each side.
  rows = cv::Range(captureSize.height, 0);
  columns = cv::Range(captureSize.width, 0);
  cv::Mat previousGrey;
  cv::Mat grey;
  cv::Mat difference;
  ConvertToGrey(*provider.GetImageAt(0), previousGrey);
  for (size_t i = 1; i < provider.Count(); ++i) {
    ConvertToGrey(*provider.GetImageAt(i), grey);
    CompareGrey(previousGrey, grey, difference);
    if (!FindTopAndLeftContentBoundary(difference, rows, columns)) {
      TellError("Error: Failed to find top or left content boundary for image with index " +
                std::to_string(i) + ".");
      return false;
    }
    if (!FindBottomAndRightContentBoundary(difference, rows, columns)) {
      TellError("Error: Failed to find bottom or right content boundary for image with index " +
                std::to_string(i) + ".");
      return false;
    }
    std::swap(previousGrey, grey);
  }
  if (rows.start >= rows.end || columns.start >= columns.end) {
    TellError("Error: Bad content box created.");
    return false;
  }
  return true;
}

bool BasicBorderDetection::CopyBorders(const cv::Mat& image, const cv::Range& rows,
                                       const cv::Range& columns) {
  if (rows.start > 0 && !KeepBorder(image.rowRange(0, rows.start), "top", topBorder)) {
    return false;
  }
  if (rows.end < image.rows &&
      !KeepBorder(image.rowRange(rows.end, image.rows), "bottom", bottomBorder)) {
    return false;
  }
  if (columns.start > 0 && !KeepBorder(image(rows, {0, columns.start}), "left", leftBorder)) {
    return false;
  }
  if (columns.end < image.cols &&
      !KeepBorder(image(rows, {columns.end, image.cols}), "right", rightBorder)) {
    return false;
  }
  if (!HasBorder()) {
    TellError("Error: No border has been extracted.");
    return false;
  }
  return true;
}

bool BasicBorderDetection::AddBorders(const cv::Range& rows, const cv::Range& columns,
                                      cv::Mat& frame) {
  LayBorder(*topBorder, {0, 0}, frame);
  LayBorder(*bottomBorder, {0, rows.end}, frame);
  LayBorder(*leftBorder, {0, rows.start}, frame);
  LayBorder(*rightBorder, {columns.end, rows.start}, frame);
  return true;
}

bool BasicBorderDetection::FindTopAndLeftContentBoundary(cv::Mat& difference, cv::Range& rows,
                                                         cv::Range& columns) {
  const ContentSearch search(difference, differenceThreshold, neighborThreshold);
  bool topSettled = false;
  for (int row = 0; row < difference.rows; ++row) {
    topSettled = topSettled || row >= rows.start;
    // Once the top is settled, a row can only move the left edge.
    const int end = topSettled ? std::min(columns.start, difference.cols) : difference.cols;
    const std::optional<int> column = search.First(row, {0, end});
    if (!column) {
      continue;
    }
    if (!ConfirmContent(difference, row, *column)) {
      return false;
    }
    if (!topSettled) {
      rows.start = row;
      topSettled = true;
    }
    columns.start = std::min(columns.start, *column);
  }
  return topSettled;
}

bool BasicBorderDetection::FindBottomAndRightContentBoundary(cv::Mat& difference, cv::Range& rows,
                                                             cv::Range& columns) {
  const ContentSearch search(difference, differenceThreshold, neighborThreshold);
  bool bottomSettled = false;
  for (int row = difference.rows - 1; row >= 0; --row) {
    bottomSettled = bottomSettled || row <= rows.end;
    // Once the bottom is settled, a row can only move the right edge.
    const int start = bottomSettled ? std::min(columns.end, difference.cols - 1) + 1 : 0;
    const std::optional<int> column = search.Last(row, {std::max(start, 0), difference.cols});
    if (!column) {
      continue;
    }
    if (!ConfirmContent(difference, row, *column)) {
      return false;
    }
    if (!bottomSettled) {
      rows.end = row + 1;
      bottomSettled = true;
    }
    if (*column > columns.end) {
      columns.end = *column + 1;
    }
  }
  return bottomSettled;
}

bool BasicBorderDetection::CheckNearestNeighbors(const cv::Mat& difference, int row, int column,
                                                 bool& isContent) const {
  if (difference.rows < 2 || difference.cols < 2) {
    TellError("Error: Image too small to remove border.");
    return false;
  }
  std::uint32_t changedNeighbors = 0;
  for (int r = std::max(row - 1, 0); r <= std::min(row + 1, difference.rows - 1); ++r) {
    for (int c = std::max(column - 1, 0); c <= std::min(column + 1, difference.cols - 1); ++c) {
      const bool isNeighbor = r != row || c != column;
      if (isNeighbor && difference.at<uchar>(r, c) > differenceThreshold) {
        ++changedNeighbors;
      }
    }
  }
  isContent = changedNeighbors > neighborThreshold;
  return true;
}

void BasicBorderDetection::CalculateFinalImageSize(const cv::Size& contentSize, cv::Size& finalSize,
                                                   cv::Range& rows, cv::Range& columns) {
  const int top = topBorder->empty() ? 0 : topBorder->rows;
  const int bottom = bottomBorder->empty() ? 0 : bottomBorder->rows;
  const int left = leftBorder->empty() ? 0 : leftBorder->cols;
  const int right = rightBorder->empty() ? 0 : rightBorder->cols;
  finalSize = cv::Size(left + contentSize.width + right, top + contentSize.height + bottom);
  rows = cv::Range(top, top + contentSize.height);
  columns = cv::Range(left, left + contentSize.width);
}

bool BasicBorderDetection::HasBorder() const {
  return !leftBorder->empty() || !rightBorder->empty() || !topBorder->empty() ||
         !bottomBorder->empty();
}

bool BasicBorderDetection::ConfirmContent(const cv::Mat& difference, int row, int column) const {
  bool isContent = false;
  if (!CheckNearestNeighbors(difference, row, column, isContent)) {
    TellError("Error: Nearest neighbor detection failed.");
    return false;
  }
  assert(isContent);
  return true;
}

}  // namespace ScrollingCapture
