#pragma once

#include <vector>

#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>

namespace ScrollingCapture::Testing {

/// A capture as a lossy file of that quality gives it back.
inline cv::Mat ThroughJpeg(const cv::Mat& capture, int quality) {
  cv::Mat image;
  cv::cvtColor(capture, image, cv::COLOR_RGBA2BGR);
  std::vector<unsigned char> file;
  cv::imencode(".jpg", image, file, {cv::IMWRITE_JPEG_QUALITY, quality});
  cv::cvtColor(cv::imdecode(file, cv::IMREAD_COLOR), image, cv::COLOR_BGR2RGBA);
  return image;
}

}  // namespace ScrollingCapture::Testing
