#pragma once

#include <cstddef>
#include <functional>
#include <limits>
#include <memory>
#include <vector>

#include <gtest/gtest.h>
#include <opencv2/core.hpp>

#include <VelScrollingCapture/frontend/VelScrollingCapture.h>

namespace ScrollingCapture::Testing {

/// Remembers the progress it is told, and goes on until it has been told `limit` times.
class Delegate : public ScrollingProgressDelegate {
 public:
  explicit Delegate(size_t limit = std::numeric_limits<size_t>::max()) : limit(limit) {}

  void setCurrentProgress(int progress) override {
    heard.push_back(progress);
    if (onProgress) {
      onProgress();
    }
  }
  bool continueScrolling() override {
    ++questions;
    return heard.size() < limit;
  }

  std::vector<int> heard;
  size_t questions = 0;
  std::function<void()> onProgress;

 private:
  size_t limit;
};

/// A capture object that does not outlive its test, stitched or not.
class CaptureObject : public testing::Test {
 protected:
  ~CaptureObject() override { capture->cleanupListener(); }

  void AddAll(const std::vector<cv::Mat>& captures) {
    for (const cv::Mat& matrix : captures) {
      Add(matrix);
    }
  }
  void Add(const cv::Mat& matrix) {
    capture->addImageToAdapter(PlatformImage::imageWithCVMat(matrix));
  }
  size_t Count() { return capture->stitcherAdapter()->Count(); }

  std::shared_ptr<VelScrollingCapture> capture = VelScrollingCapture::init();
};

}  // namespace ScrollingCapture::Testing
