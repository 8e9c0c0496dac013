#include <algorithm>

#include <opencv2/imgproc.hpp>

#include <VelScrollingCapture/core/Utilities.h>

namespace ScrollingCapture {
namespace {

/// Few enough rows that their grey levels stay in the processor's cache.
constexpr int RowsAtOnce = 16;

}  // namespace

double Utilities::CalculateSimilarity(const cv::Mat& first, const cv::Mat& second) {
  CV_Assert(!first.empty() && first.size() == second.size());
  cv::Mat firstGrey;
  cv::Mat secondGrey;
  cv::Mat difference;
  // Sums of whole numbers are exact, so the order of the summands does not matter.
  double total = 0;
  for (int row = 0; row < first.rows; row += RowsAtOnce) {
    const cv::Range rows(row, std::min(row + RowsAtOnce, first.rows));
    cv::cvtColor(first.rowRange(rows), firstGrey, cv::COLOR_RGBA2GRAY);
    cv::cvtColor(second.rowRange(rows), secondGrey, cv::COLOR_RGBA2GRAY);
    cv::absdiff(firstGrey, secondGrey, difference);
    total += cv::sum(difference)[0];
  }
  const auto rows = static_cast<double>(first.rows);
  const auto columns = static_cast<double>(first.cols);
  return total / (columns * -255.0 * rows) + 1.0;
}

}  // namespace ScrollingCapture
