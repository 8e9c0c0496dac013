#include <VelScrollingCapture/detection/phase/internal/MatrixPool.h>

namespace ScrollingCapture {

std::shared_ptr<cv::Mat> MatrixPool::Lend(const cv::Size& size, int type) {
  auto matrix = std::make_unique<cv::Mat>(TakeSpare());
  matrix->create(size, type);
  return {matrix.release(), [this](cv::Mat* used) {
            const std::unique_ptr<cv::Mat> owned(used);
            GiveBack(*owned);
          }};
}

cv::Mat MatrixPool::TakeSpare() {
  const std::lock_guard<std::mutex> lock(mutex);
  if (spares.empty()) {
    return {};
  }
  cv::Mat spare = spares.back();
  spares.pop_back();
  return spare;
}

void MatrixPool::GiveBack(const cv::Mat& matrix) {
  const std::lock_guard<std::mutex> lock(mutex);
  spares.push_back(matrix);
}

}  // namespace ScrollingCapture
