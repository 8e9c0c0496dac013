#pragma once

#include <memory>
#include <mutex>
#include <vector>

#include <opencv2/core.hpp>

namespace ScrollingCapture {

/// Lends matrices and keeps their memory for the next time: fresh memory of this size has to be
/// mapped and cleared by the system, which takes as long as a good part of a transform.
///
/// Any number of threads may use it at once. It must outlive the matrices that it has lent.
class MatrixPool {
 public:
  /// A matrix with arbitrary content, which comes back when the last pointer to it goes.
  std::shared_ptr<cv::Mat> Lend(const cv::Size& size, int type);

 private:
  cv::Mat TakeSpare();
  void GiveBack(const cv::Mat& matrix);

  std::mutex mutex;
  std::vector<cv::Mat> spares;
};

}  // namespace ScrollingCapture
