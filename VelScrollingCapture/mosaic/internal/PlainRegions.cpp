#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include <VelScrollingCapture/mosaic/internal/Cells.h>
#include <VelScrollingCapture/mosaic/internal/PixelComparison.h>
#include <VelScrollingCapture/mosaic/internal/PlainRegions.h>

namespace ScrollingCapture {
namespace {

using Background = std::optional<std::uint32_t>;

Background BackgroundOf(const cv::Mat& cell) {
  std::array<std::uint32_t, size_t{CellSize} * CellSize> values{};
  const auto width = static_cast<size_t>(cell.cols);
  for (int row = 0; row < cell.rows; ++row) {
    ReadPixelValues(cell.ptr(row), width, cell.elemSize(),
                    values.data() + static_cast<size_t>(row) * width);
  }
  return PrevailingValue(values.data(), values.data() + cell.total());
}

class RegionSearch {
 public:
  RegionSearch(const cv::Mat& pixels, const cv::Mat& cells)
      : size(cells.size()), backgrounds(cells.total()), regions(cv::Mat::zeros(size, CV_32S)) {
    for (int row = 0; row < size.height; ++row) {
      for (int column = 0; column < size.width; ++column) {
        if (cells.at<std::uint8_t>(row, column) != 0) {
          const cv::Rect area(column * CellSize, row * CellSize, CellSize, CellSize);
          At({column, row}) = BackgroundOf(pixels(area & cv::Rect({}, pixels.size())));
        }
      }
    }
  }

  cv::Mat Find() {
    int found = 0;
    for (int row = 0; row < size.height; ++row) {
      for (int column = 0; column < size.width; ++column) {
        if (At({column, row}).has_value() && regions.at<int>(row, column) == 0) {
          Fill({column, row}, ++found);
        }
      }
    }
    return std::move(regions);
  }

 private:
  Background& At(const cv::Point& cell) {
    return backgrounds[static_cast<size_t>(cell.y) * static_cast<size_t>(size.width) +
                       static_cast<size_t>(cell.x)];
  }

  void Fill(const cv::Point& start, int region) {
    std::vector<cv::Point> open = {start};
    regions.at<int>(start) = region;
    while (!open.empty()) {
      const cv::Point cell = open.back();
      open.pop_back();
      for (const cv::Point& step : {cv::Point(1, 0), {-1, 0}, {0, 1}, {0, -1}}) {
        const cv::Point next = cell + step;
        if (cv::Rect({}, size).contains(next) && regions.at<int>(next) == 0 &&
            At(next) == At(start)) {
          regions.at<int>(next) = region;
          open.push_back(next);
        }
      }
    }
  }

  const cv::Size size;
  std::vector<Background> backgrounds;
  cv::Mat regions;
};

}  // namespace

cv::Mat FindPlainRegions(const cv::Mat& pixels, const cv::Mat& cells) {
  return RegionSearch(pixels, cells).Find();
}

}  // namespace ScrollingCapture
