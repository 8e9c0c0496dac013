#include <opencv2/imgproc.hpp>

#include <VelScrollingCapture/core/Utilities.h>

namespace ScrollingCapture {

double Utilities::CalculateSimilarity(const cv::Mat& first, const cv::Mat& second) {
  cv::Mat firstGrey;
  cv::Mat secondGrey;
  cv::cvtColor(first, firstGrey, cv::COLOR_RGBA2GRAY);
  cv::cvtColor(second, secondGrey, cv::COLOR_RGBA2GRAY);
  cv::Mat difference;
  cv::absdiff(firstGrey, secondGrey, difference);
  const double total = cv::sum(difference)[0];
  const auto rows = static_cast<double>(difference.rows);
  const auto columns = static_cast<double>(difference.cols);
  return total / (columns * -255.0 * rows) + 1.0;
}

}  // namespace ScrollingCapture
