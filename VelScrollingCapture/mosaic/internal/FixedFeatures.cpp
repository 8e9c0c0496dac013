#include <algorithm>
#include <vector>

#include <opencv2/imgproc.hpp>

#include <VelScrollingCapture/mosaic/internal/Cells.h>
#include <VelScrollingCapture/mosaic/internal/FixedFeatures.h>
#include <VelScrollingCapture/mosaic/internal/PixelComparison.h>

namespace ScrollingCapture {
namespace {

/// Pixels between those that are held against each other.
constexpr int Reach = 4;

/// Cells between parts of one feature, at most twice this.
constexpr int Closeness = 2;

/// Marks the cells with pixels that differ from those `step` pixels away.
void MarkChanges(const cv::Mat& pixels, const cv::Point& step, cv::Mat& cells) {
  if (pixels.rows <= step.y || pixels.cols <= step.x) {
    return;
  }
  std::vector<std::uint8_t> differs(static_cast<size_t>(pixels.cols - step.x));
  for (int row = 0; row < pixels.rows - step.y; ++row) {
    if (!MarkDifferences(pixels.ptr(row), pixels.ptr(row + step.y, step.x), differs.size(),
                         pixels.elemSize(), differs.data())) {
      continue;
    }
    std::uint8_t* const near = cells.ptr(row / CellSize);
    std::uint8_t* const far = cells.ptr((row + step.y) / CellSize);
    for (size_t column = 0; column < differs.size(); ++column) {
      near[column / CellSize] |= differs[column];
      far[(column + static_cast<size_t>(step.x)) / CellSize] |= differs[column];
    }
  }
}

std::uint8_t SideOf(double row, double column, const cv::Size& cells) {
  const int low = 2 * row + 1 > cells.height ? BelongsLow : 0;
  const int right = 2 * column + 1 > cells.width ? BelongsRight : 0;
  return static_cast<std::uint8_t>(low | right);
}

}  // namespace

cv::Mat FindFixedFeatures(const cv::Mat& pixels, const cv::Mat& covered, bool vertically,
                          bool sideways) {
  const cv::Size cells = covered.size();
  cv::Mat featured = cv::Mat::zeros(cells, CV_8U);
  if (vertically) {
    MarkChanges(pixels, {0, Reach}, featured);
  }
  if (sideways) {
    MarkChanges(pixels, {Reach, 0}, featured);
  }
  featured.setTo(0, covered == 0);

  constexpr int Wide = 2 * Closeness + 1;
  cv::Mat joined;
  cv::dilate(featured, joined, cv::Mat::ones(Wide, Wide, CV_8U));
  cv::Mat labels;
  cv::Mat statistics;
  cv::Mat centres;
  cv::connectedComponentsWithStats(joined, labels, statistics, centres);
  cv::Mat features(cells, CV_8U);
  for (int row = 0; row < cells.height; ++row) {
    for (int column = 0; column < cells.width; ++column) {
      const int label = labels.at<int>(row, column);
      const auto side = label == 0
                            ? SideOf(row, column, cells)
                            : SideOf(statistics.at<int>(label, cv::CC_STAT_TOP) +
                                         (statistics.at<int>(label, cv::CC_STAT_HEIGHT) - 1) / 2.0,
                                     statistics.at<int>(label, cv::CC_STAT_LEFT) +
                                         (statistics.at<int>(label, cv::CC_STAT_WIDTH) - 1) / 2.0,
                                     cells);
      features.at<std::uint8_t>(row, column) =
          static_cast<std::uint8_t>(side | featured.at<std::uint8_t>(row, column));
    }
  }
  return features;
}

}  // namespace ScrollingCapture
