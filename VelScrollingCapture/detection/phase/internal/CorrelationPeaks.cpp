#include <algorithm>
#include <iterator>

#include <VelScrollingCapture/detection/phase/internal/CorrelationPeaks.h>

namespace ScrollingCapture {
namespace {

Peak HighestOf(const cv::Mat& rows) {
  Peak peak;
  cv::minMaxIdx(rows, nullptr, &peak.value, nullptr, peak.position);
  return peak;
}

/// Higher, or as high and earlier in row-major order.
bool IsBefore(const Peak& peak, const Peak& other) {
  return peak.value > other.value ||
         (peak.value == other.value &&
          std::lexicographical_compare(std::begin(peak.position), std::end(peak.position),
                                       std::begin(other.position), std::end(other.position)));
}

}  // namespace

/// No more than two values of a block can be among the two highest of the surface.
void PeakSearch::Add(int firstRow, cv::Mat& rows) {
  const Peak best = HighestOf(rows);
  Offer(firstRow, best);
  if (wantsAlternative && rows.total() > 1) {
    rows.at<float>(best.position[0], best.position[1]) = -std::numeric_limits<float>::max();
    Offer(firstRow, HighestOf(rows));
  }
}

bool PeakSearch::MayFindMore(double bound) const {
  return bound >= (wantsAlternative ? AlternativeThreshold * highest.value : highest.value);
}

const Peak& PeakSearch::Alternative() const {
  return secondHighest.value > AlternativeThreshold * highest.value ? secondHighest : highest;
}

void PeakSearch::Offer(int firstRow, Peak peak) {
  peak.position[0] += firstRow;
  if (IsBefore(peak, highest)) {
    secondHighest = highest;
    highest = peak;
  } else if (IsBefore(peak, secondHighest)) {
    secondHighest = peak;
  }
}

}  // namespace ScrollingCapture
