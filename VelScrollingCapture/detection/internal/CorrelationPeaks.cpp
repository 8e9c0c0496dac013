#include <VelScrollingCapture/detection/internal/CorrelationPeaks.h>

namespace ScrollingCapture {
namespace {

Peak HighestOf(const cv::Mat& rows) {
  Peak peak;
  cv::minMaxIdx(rows, nullptr, &peak.value, nullptr, peak.position);
  return peak;
}

}  // namespace

/// No more than two values of a block can be among the two highest of the surface.
void PeakSearch::Add(int firstRow, cv::Mat& rows) {
  const Peak best = HighestOf(rows);
  Offer(firstRow, best);
  if (rows.total() > 1) {
    rows.at<float>(best.position[0], best.position[1]) = -std::numeric_limits<float>::max();
    Offer(firstRow, HighestOf(rows));
  }
}

void PeakSearch::Offer(int firstRow, Peak peak) {
  peak.position[0] += firstRow;
  if (peak.value > highest.value) {
    secondHighest = highest;
    highest = peak;
  } else if (peak.value > secondHighest.value) {
    secondHighest = peak;
  }
}

}  // namespace ScrollingCapture
