#include <algorithm>
#include <iterator>
#include <limits>
#include <stdexcept>

#include <VelScrollingCapture/mosaic/internal/CaptureLayout.h>

namespace ScrollingCapture {
namespace {

/// How far places reach along one axis.
class Extent {
 public:
  void Add(int value) {
    lowest = std::min(lowest, value);
    highest = std::max(highest, value);
  }
  int Lowest() const { return lowest; }
  std::int64_t Length() const { return std::int64_t{highest} - lowest; }

 private:
  int lowest = std::numeric_limits<int>::max();
  int highest = std::numeric_limits<int>::min();
};

int Narrowed(std::int64_t length) {
  if (length > std::numeric_limits<int>::max()) {
    throw std::length_error("The picture has more rows or columns than an int can tell.");
  }
  return static_cast<int>(length);
}

}  // namespace

CaptureLayout::CaptureLayout(const cv::Size& captureSize, const std::vector<Place>& places)
    : captureSize(captureSize) {
  if (places.empty()) {
    return;
  }
  Extent rows;
  Extent columns;
  for (const Place& place : places) {
    rows.Add(place.row);
    columns.Add(place.column);
  }
  pictureSize = {Narrowed(columns.Length() + captureSize.width),
                 Narrowed(rows.Length() + captureSize.height)};
  corners.reserve(places.size());
  bucketColumns = pictureSize.width / captureSize.width + 1;
  for (const Place& place : places) {
    const cv::Point corner(place.column - columns.Lowest(), place.row - rows.Lowest());
    buckets[BucketOf(corner.y / captureSize.height, corner.x / captureSize.width)].push_back(
        corners.size());
    corners.push_back(corner);
  }
}

std::int64_t CaptureLayout::BucketOf(int bucketRow, int bucketColumn) const {
  return std::int64_t{bucketRow} * bucketColumns + bucketColumn;
}

std::vector<size_t> CaptureLayout::CapturesIn(const cv::Rect& area) const {
  std::vector<size_t> found;
  if (area.empty()) {
    return found;
  }
  const int firstRow = std::max(0, area.y / captureSize.height - 1);
  const int lastRow = (area.y + area.height - 1) / captureSize.height;
  const int firstColumn = std::max(0, area.x / captureSize.width - 1);
  const int lastColumn = (area.x + area.width - 1) / captureSize.width;
  for (int row = firstRow; row <= lastRow; ++row) {
    for (int column = firstColumn; column <= std::min(lastColumn, bucketColumns - 1); ++column) {
      const auto bucket = buckets.find(BucketOf(row, column));
      if (bucket == buckets.end()) {
        continue;
      }
      std::copy_if(bucket->second.begin(), bucket->second.end(), std::back_inserter(found),
                   [&](size_t capture) { return !(RectOf(capture) & area).empty(); });
    }
  }
  std::sort(found.begin(), found.end());
  return found;
}

}  // namespace ScrollingCapture
