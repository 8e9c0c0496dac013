#include <algorithm>
#include <vector>

#include <opencv2/imgproc.hpp>

#include <VelScrollingCapture/mosaic/internal/CellMarks.h>
#include <VelScrollingCapture/mosaic/internal/Cells.h>
#include <VelScrollingCapture/mosaic/internal/FixedFeatures.h>
#include <VelScrollingCapture/mosaic/internal/PixelComparison.h>

namespace ScrollingCapture {
namespace {

/// Pixels between those that are held against each other.
constexpr int Reach = 4;

/// Cells between parts of one feature, at most twice this.
constexpr int Closeness = 2;

/// Marks the cells of some rows of pixels that have pixels which differ from those `step` pixels
/// away.
void MarkChanges(const cv::Mat& pixels, const cv::Range& rows, const cv::Point& step,
                 cv::Mat& cells) {
  if (pixels.cols <= step.x) {
    return;
  }
  std::vector<std::uint8_t> differs(static_cast<size_t>(pixels.cols - step.x));
  for (int row = std::max(rows.start, 0); row < std::min(rows.end, pixels.rows - step.y); ++row) {
    if (!MarkDifferences(pixels.ptr(row), pixels.ptr(row + step.y, step.x), differs.size(),
                         pixels.elemSize(), differs.data())) {
      continue;
    }
    const auto mark = [&](int markedRow, int column) {
      std::uint8_t* const marks = cells.ptr(markedRow / CellSize);
      ForEachCell(column, differs.size(), [&](int cell, size_t first, size_t count) {
        const bool isMarked = LoadMarks(differs.data() + first, count) != 0;
        marks[cell] |= static_cast<std::uint8_t>(isMarked);
      });
    };
    mark(row, 0);
    mark(row + step.y, step.x);
  }
}

/// Marks the covered cells with pixels that differ from those `step` pixels away.
cv::Mat FeaturedCells(const cv::Mat& pixels, const cv::Mat& covered,
                      const std::vector<cv::Point>& steps) {
  cv::Mat featured = cv::Mat::zeros(covered.size(), CV_8U);
  for (int row = 0; row < covered.rows; ++row) {
    if (cv::countNonZero(covered.row(row)) > 0) {
      for (const cv::Point& step : steps) {
        MarkChanges(pixels, {row * CellSize - step.y, (row + 1) * CellSize}, step, featured);
      }
    }
  }
  featured.setTo(0, covered == 0);
  return featured;
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
  std::vector<cv::Point> steps;
  if (vertically) {
    steps.emplace_back(0, Reach);
  }
  if (sideways) {
    steps.emplace_back(Reach, 0);
  }
  const cv::Mat featured = FeaturedCells(pixels, covered, steps);
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
