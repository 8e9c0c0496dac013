#pragma once

#include <string>

#include <opencv2/imgproc.hpp>
#include <testkit/MatrixTesting.h>

namespace ScrollingCapture::Testing {

/// Lines of letters on white, and noise beside them: CV_8UC4, opaque.
inline cv::Mat DrawnPicture(const cv::Size& size) {
  constexpr int LineHeight = 20;
  cv::Mat picture(size, CV_8UC4, cv::Scalar::all(255));
  for (int line = 0; line * LineHeight < size.height; ++line) {
    cv::putText(picture, "line " + std::to_string(line * 7919), {4, line * LineHeight + 14},
                cv::FONT_HERSHEY_SIMPLEX, 0.4, cv::Scalar(20, 40, 160, 255), 1, cv::LINE_8);
  }
  const cv::Rect photograph(size.width / 2, size.height / 3, size.width / 3, size.height / 3);
  NoiseCapture(photograph.size(), 5).copyTo(picture(photograph));
  return picture;
}

/// The same with a transparent corner, and a half transparent one beside it.
inline cv::Mat DrawnPictureWithHoles(const cv::Size& size) {
  cv::Mat picture = DrawnPicture(size);
  const cv::Rect corner(0, 0, size.width / 4, size.height / 4);
  picture(corner).setTo(cv::Scalar::all(0));
  picture(corner + cv::Point(corner.width, 0)).setTo(cv::Scalar(60, 30, 0, 128));
  return picture;
}

}  // namespace ScrollingCapture::Testing
