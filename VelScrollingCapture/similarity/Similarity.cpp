#include <VelScrollingCapture/core/Utilities.h>
#include <VelScrollingCapture/similarity/internal/GreyDifference.h>

namespace ScrollingCapture {

double Utilities::CalculateSimilarity(const cv::Mat& first, const cv::Mat& second) {
  CV_Assert(!first.empty() && first.size() == second.size());
  const double total = SumOfGreyDifferences(first, second);
  const auto rows = static_cast<double>(first.rows);
  const auto columns = static_cast<double>(first.cols);
  return total / (columns * -255.0 * rows) + 1.0;
}

}  // namespace ScrollingCapture
