#include <algorithm>
#include <numeric>
#include <vector>

#include <live/ChangedStrip.h>

namespace ScrollingCapture::Live {
namespace {

constexpr int Sampling = 8;
constexpr int StripsInFrame = 8;
constexpr int NarrowestStrip = 96;

/// How many of the sampled pixels differ, column by column.
std::vector<int> ChangesOfColumns(const cv::Mat& before, const cv::Mat& now) {
  std::vector<int> changes(static_cast<size_t>(now.cols));
  for (int row = 0; row < now.rows; row += Sampling) {
    const auto* const left = before.ptr<int>(row);
    const auto* const right = now.ptr<int>(row);
    for (size_t column = 0; column < changes.size(); ++column) {
      changes[column] += left[column] != right[column] ? 1 : 0;
    }
  }
  return changes;
}

/// The same row by row.
std::vector<int> ChangesOfRows(const cv::Mat& before, const cv::Mat& now) {
  std::vector<int> changes(static_cast<size_t>(now.rows));
  for (int row = 0; row < now.rows; ++row) {
    const auto* const left = before.ptr<int>(row);
    const auto* const right = now.ptr<int>(row);
    for (int column = 0; column < now.cols; column += Sampling) {
      changes[static_cast<size_t>(row)] += left[column] != right[column] ? 1 : 0;
    }
  }
  return changes;
}

/// The lines with most changes, so many in a row as a strip takes; empty without any change.
cv::Range BusiestLines(const std::vector<int>& changes) {
  const auto lines = static_cast<int>(changes.size());
  const int width = std::min(lines, std::max(NarrowestStrip, lines / StripsInFrame));
  int sum = std::accumulate(changes.begin(), changes.begin() + width, 0);
  int most = sum;
  int best = 0;
  for (int first = 1; first + width <= lines; ++first) {
    sum +=
        changes[static_cast<size_t>(first + width - 1)] - changes[static_cast<size_t>(first - 1)];
    if (sum > most) {
      most = sum;
      best = first;
    }
  }
  return most > 0 ? cv::Range(best, best + width) : cv::Range();
}

}  // namespace

cv::Rect ChangedStrip(const cv::Mat& before, const cv::Mat& now, StripAxis axis) {
  if (axis == StripAxis::Upright) {
    const cv::Range columns = BusiestLines(ChangesOfColumns(before, now));
    return columns.empty() ? cv::Rect() : cv::Rect(columns.start, 0, columns.size(), now.rows);
  }
  const cv::Range rows = BusiestLines(ChangesOfRows(before, now));
  return rows.empty() ? cv::Rect() : cv::Rect(0, rows.start, now.cols, rows.size());
}

}  // namespace ScrollingCapture::Live
