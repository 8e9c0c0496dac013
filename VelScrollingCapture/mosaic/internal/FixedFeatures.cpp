#include <algorithm>
#include <map>
#include <vector>

#include <opencv2/imgproc.hpp>

#include <VelScrollingCapture/mosaic/internal/CellMarks.h>
#include <VelScrollingCapture/mosaic/internal/Cells.h>
#include <VelScrollingCapture/mosaic/internal/FixedFeatures.h>
#include <VelScrollingCapture/mosaic/internal/PixelComparison.h>
#include <VelScrollingCapture/mosaic/internal/PlainRegions.h>

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

/// Marks the cells whose region reaches over more than half of their column. For rows, transposed.
cv::Mat ReachingFar(const cv::Mat& regionOf) {
  cv::Mat marks = cv::Mat::zeros(regionOf.size(), CV_8U);
  for (int column = 0; column < regionOf.cols; ++column) {
    std::map<int, cv::Range> reaches;
    for (int row = 0; row < regionOf.rows; ++row) {
      const int region = regionOf.at<int>(row, column);
      if (region != 0) {
        reaches.emplace(region, cv::Range(row, row)).first->second.end = row + 1;
      }
    }
    for (int row = 0; row < regionOf.rows; ++row) {
      const auto reach = reaches.find(regionOf.at<int>(row, column));
      const bool isFar = reach != reaches.end() && 2 * reach->second.size() > regionOf.rows;
      marks.at<std::uint8_t>(row, column) = isFar ? 1 : 0;
    }
  }
  return marks;
}

/// What is featured in a region with one background.
struct Region {
  cv::Point2d sumOfFeatured;
  int featured = 0;
};

class FeatureSearch {
 public:
  FeatureSearch(const cv::Mat& pixels, const cv::Mat& covered, bool vertically, bool sideways)
      : vertically(vertically),
        sideways(sideways),
        cells(covered.size()),
        featured(FeaturedCells(pixels, covered, Steps())),
        regionOf(FindPlainRegions(pixels, covered)),
        goingOn(GoingOn()) {
    constexpr int Wide = 2 * Closeness + 1;
    cv::Mat joined;
    cv::dilate(featured, joined, cv::Mat::ones(Wide, Wide, CV_8U));
    cv::Mat centres;
    cv::connectedComponentsWithStats(joined, labels, statistics, centres);
    ForEach([&](const cv::Point& cell) {
      const auto number = static_cast<size_t>(regionOf.at<int>(cell));
      regions.resize(std::max(regions.size(), number + 1));
      Region& region = regions[number];
      if (featured.at<std::uint8_t>(cell) != 0) {
        region.sumOfFeatured += cv::Point2d(cell);
        ++region.featured;
      }
    });
  }

  cv::Mat Find() const {
    cv::Mat features(cells, CV_8U);
    ForEach([&](const cv::Point& cell) {
      features.at<std::uint8_t>(cell) =
          static_cast<std::uint8_t>(SideOf(MiddleAt(cell)) | LookOf(cell));
    });
    return features;
  }

 private:
  template <typename Take>
  void ForEach(Take take) const {
    for (int row = 0; row < cells.height; ++row) {
      for (int column = 0; column < cells.width; ++column) {
        take(cv::Point(column, row));
      }
    }
  }

  std::vector<cv::Point> Steps() const {
    std::vector<cv::Point> steps;
    if (vertically) {
      steps.emplace_back(0, Reach);
    }
    if (sideways) {
      steps.emplace_back(Reach, 0);
    }
    return steps;
  }

  /// The middle of the feature that a cell is a part of, of those on its background, or of itself.
  cv::Point2d MiddleAt(const cv::Point& cell) const {
    if (const int label = labels.at<int>(cell); label != 0) {
      const auto statistic = [&](int which) { return statistics.at<int>(label, which); };
      return {statistic(cv::CC_STAT_LEFT) + (statistic(cv::CC_STAT_WIDTH) - 1) / 2.0,
              statistic(cv::CC_STAT_TOP) + (statistic(cv::CC_STAT_HEIGHT) - 1) / 2.0};
    }
    const int number = regionOf.at<int>(cell);
    const Region& region = regions[static_cast<size_t>(number)];
    return number != 0 && region.featured > 0 ? region.sumOfFeatured / region.featured
                                              : cv::Point2d(cell);
  }

  int SideOf(const cv::Point2d& middle) const {
    return (2 * middle.y + 1 > cells.height ? BelongsLow : 0) |
           (2 * middle.x + 1 > cells.width ? BelongsRight : 0);
  }

  int LookOf(const cv::Point& cell) const {
    const int number = regionOf.at<int>(cell);
    const bool goesOn = goingOn.at<std::uint8_t>(cell) != 0;
    const bool isFeatured = featured.at<std::uint8_t>(cell) != 0 || (number != 0 && !goesOn);
    return (isFeatured ? Featured : 0) | (goesOn ? OnBackground : 0);
  }

  /// The cells whose background reaches over more than half of the window along the scroll
  /// direction.
  cv::Mat GoingOn() const {
    cv::Mat marks = (regionOf != 0) & 1;
    if (vertically) {
      marks &= ReachingFar(regionOf);
    }
    if (sideways) {
      marks &= ReachingFar(regionOf.t()).t();
    }
    return marks;
  }

  const bool vertically;
  const bool sideways;
  const cv::Size cells;
  const cv::Mat featured;
  const cv::Mat regionOf;
  const cv::Mat goingOn;
  cv::Mat labels;
  cv::Mat statistics;
  std::vector<Region> regions = {{}};
};

}  // namespace

cv::Mat FindFixedFeatures(const cv::Mat& pixels, const cv::Mat& covered, bool vertically,
                          bool sideways) {
  return FeatureSearch(pixels, covered, vertically, sideways).Find();
}

}  // namespace ScrollingCapture
