#include <algorithm>
#include <cstring>

#include <opencv2/imgproc.hpp>

#include <VelScrollingCapture/core/Utilities.h>

namespace ScrollingCapture {
namespace {

/// Few enough rows that their grey levels stay in the processor's cache.
constexpr int RowsAtOnce = 16;

bool HaveSamePixels(const cv::Mat& first, const cv::Mat& second) {
  const size_t rowBytes = static_cast<size_t>(first.cols) * first.elemSize();
  bool same = first.type() == second.type();
  for (int row = 0; same && row < first.rows; ++row) {
    same = std::memcmp(first.ptr(row), second.ptr(row), rowBytes) == 0;
  }
  return same;
}

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
    const cv::Mat firstRows = first.rowRange(rows);
    const cv::Mat secondRows = second.rowRange(rows);
    // A capture that repeats the last one is the common case. The first rows always go through the
    // conversion, which rejects captures without colours.
    if (row > 0 && HaveSamePixels(firstRows, secondRows)) {
      continue;
    }
    cv::cvtColor(firstRows, firstGrey, cv::COLOR_RGBA2GRAY);
    cv::cvtColor(secondRows, secondGrey, cv::COLOR_RGBA2GRAY);
    cv::absdiff(firstGrey, secondGrey, difference);
    total += cv::sum(difference)[0];
  }
  const auto rows = static_cast<double>(first.rows);
  const auto columns = static_cast<double>(first.cols);
  return total / (columns * -255.0 * rows) + 1.0;
}

}  // namespace ScrollingCapture
