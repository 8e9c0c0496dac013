#include <VelScrollingCapture/matching/internal/PixelKeys.h>

namespace ScrollingCapture {
namespace {

bool IsAligned(const cv::Mat& capture) {
  return (reinterpret_cast<std::uintptr_t>(capture.data) | capture.step[0]) %
             alignof(std::uint32_t) ==
         0;
}

}  // namespace

cv::Mat PixelKeysOf(const cv::Mat& capture, bool arePixelsKeys) {
  if (arePixelsKeys && IsAligned(capture)) {
    return {capture.rows, capture.cols, CV_32SC1, capture.data, capture.step[0]};
  }
  cv::Mat keys(capture.size(), CV_32SC1);
  for (int row = 0; row < capture.rows; ++row) {
    WritePixelKeys(capture.ptr<unsigned char>(row), capture.channels(), capture.cols,
                   keys.ptr<std::uint32_t>(row));
  }
  return keys;
}

}  // namespace ScrollingCapture
