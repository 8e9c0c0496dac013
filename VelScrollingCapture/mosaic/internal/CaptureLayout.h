#pragma once

#include <cstddef>
#include <map>
#include <utility>
#include <vector>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/core/Place.h>

namespace ScrollingCapture {

/// Where captures of one size lie in the picture whose top-left pixel is at (0, 0).
class CaptureLayout {
 public:
  /// Throws PictureTooLarge when an int cannot hold the picture's rows or columns.
  CaptureLayout(const cv::Size& captureSize, const std::vector<Place>& places);

  size_t Count() const { return corners.size(); }
  const cv::Size& CaptureSize() const { return captureSize; }

  /// The bounding box of the captures.
  const cv::Size& PictureSize() const { return pictureSize; }

  cv::Point CornerOf(size_t capture) const { return corners[capture]; }
  cv::Rect RectOf(size_t capture) const { return {corners[capture], captureSize}; }

  /// The captures that show something of `area`, in capture order.
  std::vector<size_t> CapturesIn(const cv::Rect& area) const;

 private:
  cv::Size captureSize;
  cv::Size pictureSize;
  std::vector<cv::Point> corners;
  /// Captures by the part of the picture, as large as one capture, in which their corner lies: its
  /// row, then its column. Parts without a corner take up nothing, however far captures lie apart.
  std::map<std::pair<int, int>, std::vector<size_t>> buckets;
};

}  // namespace ScrollingCapture
