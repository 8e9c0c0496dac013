#include <algorithm>
#include <cstdint>
#include <iterator>
#include <limits>

#include <VelScrollingCapture/mosaic/internal/CaptureLayout.h>
#include <VelScrollingCapture/mosaic/internal/Refusals.h>

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
    throw PictureTooLarge("The picture has more rows or columns than an int can tell.");
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
  for (const Place& place : places) {
    const cv::Point corner(place.column - columns.Lowest(), place.row - rows.Lowest());
    buckets[{corner.y / captureSize.height, corner.x / captureSize.width}].push_back(
        corners.size());
    corners.push_back(corner);
  }
}

std::vector<size_t> CaptureLayout::CapturesIn(const cv::Rect& area) const {
  std::vector<size_t> found;
  if (area.empty()) {
    return found;
  }
  const int firstRow = std::max(0, area.y / captureSize.height - 1);
  const int lastRow = (area.y + (area.height - 1)) / captureSize.height;
  const int firstColumn = std::max(0, area.x / captureSize.width - 1);
  const int lastColumn = (area.x + (area.width - 1)) / captureSize.width;
  const auto end = buckets.upper_bound({lastRow, lastColumn});
  for (auto bucket = buckets.lower_bound({firstRow, firstColumn}); bucket != end; ++bucket) {
    std::copy_if(bucket->second.begin(), bucket->second.end(), std::back_inserter(found),
                 [&](size_t capture) { return !(RectOf(capture) & area).empty(); });
  }
  std::sort(found.begin(), found.end());
  return found;
}

}  // namespace ScrollingCapture
