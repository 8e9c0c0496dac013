#pragma once

#include <cstddef>
#include <vector>

#include <opencv2/core.hpp>
#include <testkit/MatrixTesting.h>

namespace ScrollingCapture::Testing {

constexpr size_t CaptureCount = 4;

inline const cv::Size CaptureSize(120, 150);
/// What is inside the toolbar, the status bar and the side panels.
inline const cv::Rect ContentBox(12, 20, 96, 120);

/// A page of noise on which any pixel differs from the one that a step moves to its place: the
/// noise is dark in one band and bright in the next, and bands are as long as a step.
inline cv::Mat BandedPage(const cv::Size& size, const cv::Point& step) {
  cv::Mat page = NoiseCapture(size, 21);
  cv::Mat_<cv::Vec4b> pixels(page);
  for (auto pixel = pixels.begin(); pixel != pixels.end(); ++pixel) {
    const cv::Point position = pixel.pos();
    const int band = step.y != 0 ? position.y / step.y : position.x / step.x;
    for (int channel = 0; channel < 3; ++channel) {
      (*pixel)[channel] = static_cast<uchar>((*pixel)[channel] % 64 + 128 * (band % 2));
    }
  }
  return page;
}

/// A window whose page scrolls by a step from capture to capture, below a toolbar, above a status
/// bar and between side panels.
struct ScrolledWindow {
  ScrolledWindow(const cv::Rect& contentBox, const cv::Point& step)
      : contentBox(contentBox),
        frame(NoiseCapture(CaptureSize, 8)),
        page(BandedPage({contentBox.width + step.x * static_cast<int>(CaptureCount - 1),
                         contentBox.height + step.y * static_cast<int>(CaptureCount - 1)},
                        step)) {
    for (size_t i = 0; i < CaptureCount; ++i) {
      cv::Mat capture = frame.clone();
      page(cv::Rect(step * static_cast<int>(i), contentBox.size())).copyTo(capture(contentBox));
      captures.push_back(capture);
    }
  }

  /// What a stitch must give: the whole page with the first capture's borders around it.
  cv::Mat BorderedPage() const {
    const int right = CaptureSize.width - contentBox.br().x;
    const int bottom = CaptureSize.height - contentBox.br().y;
    cv::Mat whole = cv::Mat::zeros(contentBox.y + page.rows + bottom,
                                   contentBox.x + page.cols + right, CV_8UC4);
    const auto lay = [&](const cv::Rect& from, const cv::Point& to) {
      if (!from.empty()) {
        frame(from).copyTo(whole(cv::Rect(to, from.size())));
      }
    };
    page.copyTo(whole(cv::Rect(contentBox.tl(), page.size())));
    lay({0, 0, CaptureSize.width, contentBox.y}, {0, 0});
    lay({0, contentBox.br().y, CaptureSize.width, bottom}, {0, contentBox.y + page.rows});
    lay({0, contentBox.y, contentBox.x, contentBox.height}, {0, contentBox.y});
    lay({contentBox.br().x, contentBox.y, right, contentBox.height},
        {contentBox.x + page.cols, contentBox.y});
    return whole;
  }

  cv::Rect contentBox;
  cv::Mat frame;
  cv::Mat page;
  std::vector<cv::Mat> captures;
};

}  // namespace ScrollingCapture::Testing
