#include "ReferenceCropping.h"

#include <cstdlib>
#include <vector>

#include <opencv2/imgproc.hpp>

namespace ScrollingCapture::Testing {
namespace {

void DrawTransparent(cv::Mat& image, const cv::Point& start, const cv::Point& end) {
  cv::line(image, start, end, cv::Scalar(0, 0, 0, 0), 1, cv::LINE_4, 0);
}

void WalkSlantedLine(cv::Mat& image, const cv::Point& first, const cv::Point& second,
                     bool towardsOrigin) {
  const float slope =
      static_cast<float>(first.y - second.y) / static_cast<float>(second.x - first.x);
  ReferenceMakeColumnTransparent(image, first, towardsOrigin);
  for (int pass = 0; pass < 2; ++pass) {
    auto x = static_cast<float>(first.x);
    auto y = static_cast<float>(first.y);
    bool metRowBorder = false;
    bool metColumnBorder = false;
    while (!(metRowBorder && metColumnBorder)) {
      x = pass == 0 ? x + 1.0F : x - 1.0F;
      y = pass == 0 ? y - slope : y + slope;
      if (y > static_cast<float>(image.rows - 1)) {
        y = static_cast<float>(image.rows - 1);
        metRowBorder = true;
      } else if (y < 0.0F) {
        y = 0.0F;
        metRowBorder = true;
      }
      if (x > static_cast<float>(image.cols - 1)) {
        x = static_cast<float>(image.cols - 1);
        metColumnBorder = true;
      } else if (x < 0.0F) {
        x = 0.0F;
        metColumnBorder = true;
      }
      ReferenceMakeColumnTransparent(image, cv::Point(static_cast<int>(x), static_cast<int>(y)),
                                     towardsOrigin);
    }
  }
}

}  // namespace

void ReferenceMakeRowTransparent(cv::Mat& image, const cv::Point& start, bool towardsFirstColumn) {
  DrawTransparent(image, start, cv::Point(towardsFirstColumn ? 0 : image.cols - 1, start.y));
}

void ReferenceMakeColumnTransparent(cv::Mat& image, const cv::Point& start, bool towardsFirstRow) {
  DrawTransparent(image, start, cv::Point(start.x, towardsFirstRow ? 0 : image.rows - 1));
}

void ReferenceClipCorner(cv::Mat& image, const cv::Point& first, const cv::Point& second,
                         bool towardsOrigin) {
  if (first.x == second.x) {
    for (int y = 0; y < image.rows; ++y) {
      ReferenceMakeRowTransparent(image, cv::Point(first.x, y), towardsOrigin);
    }
  } else if (first.y == second.y) {
    for (int x = 0; x < image.cols; ++x) {
      ReferenceMakeColumnTransparent(image, cv::Point(x, first.y), towardsOrigin);
    }
  } else {
    WalkSlantedLine(image, first, second, towardsOrigin);
  }
}

void ReferenceCropCaptureImage(cv::Mat& capture, const Translation& translation,
                               const cv::Rect& captureSize) {
  const int r = translation.GetRows();
  const int c = translation.GetCols();
  const int R = std::abs(r);
  const int C = std::abs(c);
  const int W = captureSize.width;
  const int H = captureSize.height;
  if (r > 0 && c > 0) {
    ReferenceClipCorner(capture, {C, H - 1}, {W - 1, R}, false);
  } else if (r < 0 && c < 0) {
    ReferenceClipCorner(capture, {0, H - R}, {W - C, 0}, true);
  } else if (r > 0 && c < 0) {
    ReferenceClipCorner(capture, {0, R}, {W - C, H - 1}, false);
  } else if (r < 0 && c > 0) {
    ReferenceClipCorner(capture, {C, 0}, {W - 1, H - R}, true);
  } else if (r < 0) {
    ReferenceClipCorner(capture, {0, (H - R) / 2}, {W - 1, (H - R) / 2}, true);
  } else if (r > 0) {
    ReferenceClipCorner(capture, {0, (H - R) / 2 + R}, {W - 1, (H - R) / 2 + R}, false);
  } else if (c > 0) {
    ReferenceClipCorner(capture, {(W - C) / 2 + C, 0}, {(W - C) / 2 + C, H - 1}, false);
  } else {
    ReferenceClipCorner(capture, {(W - C) / 2, 0}, {(W - C) / 2, H - 1}, true);
  }
}

void ReferenceBlendImages(const cv::Mat& source, cv::Mat& target, const cv::Range& targetRows,
                          const cv::Range& targetColumns) {
  std::vector<cv::Mat> channels;
  cv::split(source, channels);
  cv::Mat block(target, targetRows, targetColumns);
  source.copyTo(block, channels[3]);
}

}  // namespace ScrollingCapture::Testing
