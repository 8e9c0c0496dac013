#include <cstdint>
#include <cstdlib>
#include <iostream>

#include <opencv2/imgproc.hpp>

#include <VelScrollingCapture/core/Utilities.h>

namespace ScrollingCapture {
namespace {

const cv::Scalar Transparent(0, 0, 0, 0);
constexpr int AlphaChannel = 3;

/// A point of a seam before it is known to lie inside the capture: wide enough for every
/// translation.
using WidePoint = cv::Point_<std::int64_t>;

cv::Point Saturated(const WidePoint& point) {
  return {cv::saturate_cast<int>(point.x), cv::saturate_cast<int>(point.y)};
}

std::int64_t Length(const cv::Range& range) {
  return std::int64_t{range.end} - std::int64_t{range.start};
}

bool IsInside(const cv::Mat& image, const cv::Point& point) {
  return point.x >= 0 && point.y >= 0 && point.x < image.cols && point.y < image.rows;
}

/// One coordinate of a walk along a slanted line. It stops at the image's borders and remembers
/// having met one.
class WalkCoordinate {
 public:
  WalkCoordinate(int start, int last) : value(static_cast<float>(start)), last(last) {}

  void Advance(float step) {
    const float next = value + step;
    if (next > static_cast<float>(last)) {
      value = static_cast<float>(last);
      metBorder = true;
    } else if (next < 0.0F) {
      value = 0.0F;
      metBorder = true;
    } else {
      value = next;
    }
  }

  int Pixel() const { return static_cast<int>(value); }
  bool MetBorder() const { return metBorder; }

 private:
  float value;
  int last;
  bool metBorder = false;
};

/// Walks from `start` until both coordinates have met a border and clears the column at each step.
void ClipAlong(cv::Mat& image, const cv::Point& start, float stepX, float stepY,
               bool towardsOrigin) {
  WalkCoordinate x(start.x, image.cols - 1);
  WalkCoordinate y(start.y, image.rows - 1);
  while (!x.MetBorder() || !y.MetBorder()) {
    x.Advance(stepX);
    y.Advance(stepY);
    Utilities::MakeColumnTransparent(image, cv::Point(x.Pixel(), y.Pixel()), towardsOrigin);
  }
}

void ClipSlanted(cv::Mat& image, const cv::Point& first, const cv::Point& second,
                 bool towardsOrigin) {
  const float slope =
      static_cast<float>(first.y - second.y) / static_cast<float>(second.x - first.x);
  Utilities::MakeColumnTransparent(image, first, towardsOrigin);
  ClipAlong(image, first, 1.0F, -slope, towardsOrigin);
  ClipAlong(image, first, -1.0F, slope, towardsOrigin);
}

}  // namespace

void Utilities::MakeRowTransparent(cv::Mat& image, const cv::Point& start,
                                   bool towardsFirstColumn) {
  const cv::Point end(towardsFirstColumn ? 0 : image.cols - 1, start.y);
  cv::line(image, start, end, Transparent, 1, cv::LINE_4, 0);
}

void Utilities::MakeColumnTransparent(cv::Mat& image, const cv::Point& start,
                                      bool towardsFirstRow) {
  const cv::Point end(start.x, towardsFirstRow ? 0 : image.rows - 1);
  cv::line(image, start, end, Transparent, 1, cv::LINE_4, 0);
}

void Utilities::ClipCorner(cv::Mat& image, const cv::Point& first, const cv::Point& second,
                           bool towardsOrigin) {
  if (!IsInside(image, first) || !IsInside(image, second)) {
    std::cerr << "Points given are out of the bounds for the given matrix\n";
    return;
  }
  if (first.x == second.x) {
    for (int y = 0; y < image.rows; ++y) {
      MakeRowTransparent(image, cv::Point(first.x, y), towardsOrigin);
    }
  } else if (first.y == second.y) {
    for (int x = 0; x < image.cols; ++x) {
      MakeColumnTransparent(image, cv::Point(x, first.y), towardsOrigin);
    }
  } else {
    ClipSlanted(image, first, second, towardsOrigin);
  }
}

void Utilities::CropCaptureImage(cv::Mat& capture, const Translation& translation,
                                 const cv::Rect& captureSize) {
  const int rows = translation.GetRows();
  const int cols = translation.GetCols();
  const std::int64_t rowShift = std::abs(std::int64_t{rows});
  const std::int64_t colShift = std::abs(std::int64_t{cols});
  const std::int64_t width = captureSize.width;
  const std::int64_t height = captureSize.height;
  const std::int64_t lastColumn = width - 1;
  const std::int64_t lastRow = height - 1;
  const auto clip = [&capture](const WidePoint& first, const WidePoint& second,
                               bool towardsOrigin) {
    ClipCorner(capture, Saturated(first), Saturated(second), towardsOrigin);
  };

  if (rows > 0 && cols > 0) {
    clip({colShift, lastRow}, {lastColumn, rowShift}, false);
  } else if (rows < 0 && cols < 0) {
    clip({0, height - rowShift}, {width - colShift, 0}, true);
  } else if (rows > 0 && cols < 0) {
    clip({0, rowShift}, {width - colShift, lastRow}, false);
  } else if (rows < 0 && cols > 0) {
    clip({colShift, 0}, {lastColumn, height - rowShift}, true);
  } else if (rows < 0) {
    const std::int64_t seam = (height - rowShift) / 2;
    clip({0, seam}, {lastColumn, seam}, true);
  } else if (rows > 0) {
    const std::int64_t seam = (height - rowShift) / 2 + rowShift;
    clip({0, seam}, {lastColumn, seam}, false);
  } else if (cols > 0) {
    const std::int64_t seam = (width - colShift) / 2 + colShift;
    clip({seam, 0}, {seam, lastRow}, false);
  } else {
    const std::int64_t seam = (width - colShift) / 2;
    clip({seam, 0}, {seam, lastRow}, true);
  }
}

void Utilities::BlendImages(const cv::Mat& source, cv::Mat& target, const cv::Range& targetRows,
                            const cv::Range& targetColumns) {
  if (Length(targetRows) != source.rows || Length(targetColumns) != source.cols) {
    std::cerr << "The Ranges provided must be the same width and heigh as the source image\n";
    return;
  }
  if (targetRows.start < 0 || targetColumns.start < 0 || targetRows.end > target.rows ||
      targetColumns.end > target.cols) {
    std::cerr << "The Ranges provided must be within the bounds of the target image\n";
    return;
  }
  cv::Mat alpha;
  cv::extractChannel(source, alpha, AlphaChannel);
  cv::Mat block(target, targetRows, targetColumns);
  source.copyTo(block, alpha);
}

}  // namespace ScrollingCapture
