#include <algorithm>
#include <cstdint>
#include <set>

#include <VelScrollingCapture/session/internal/Coverage.h>

namespace ScrollingCapture {
namespace {

/// Whether captures that begin at these columns, in ascending order, leave no gap in a row.
bool CoverRow(int width, int captureWidth, const std::multiset<int>& columns) {
  int end = 0;
  for (const int column : columns) {
    if (column > end) {
      return false;
    }
    end = std::max(end, column + captureWidth);
  }
  return end >= width;
}

}  // namespace

bool Covers(const cv::Mat& pixels) {
  constexpr int AlphaChannel = 3;
  constexpr std::uint8_t Opaque = 255;
  for (int row = 0; row < pixels.rows; ++row) {
    const auto* const pixel = pixels.ptr<cv::Vec4b>(row);
    std::uint8_t least = Opaque;
    for (int column = 0; column < pixels.cols; ++column) {
      least = std::min(least, pixel[column][AlphaChannel]);
    }
    if (least != Opaque) {
      return false;
    }
  }
  return true;
}

bool Cover(const cv::Size& picture, const cv::Size& capture, std::vector<Place> places) {
  std::sort(places.begin(), places.end(),
            [](const Place& left, const Place& right) { return left.row < right.row; });
  // From top to bottom, from where one capture begins or ends to where the next does.
  std::multiset<int> columns;
  auto begins = places.begin();
  auto ends = places.begin();
  int row = 0;
  while (row < picture.height) {
    for (; begins != places.end() && begins->row <= row; ++begins) {
      columns.insert(begins->column);
    }
    for (; ends != begins && ends->row + capture.height <= row; ++ends) {
      columns.erase(columns.find(ends->column));
    }
    if (!CoverRow(picture.width, capture.width, columns)) {
      return false;
    }
    const int nextEnd = ends->row + capture.height;
    row = begins == places.end() ? nextEnd : std::min(begins->row, nextEnd);
  }
  return true;
}

}  // namespace ScrollingCapture
