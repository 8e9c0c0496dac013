#pragma once

#include <vector>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/core/Translation.h>
#include <VelScrollingCapture/storage/BasicImageProvider.h>

#include "Page.h"

namespace ScrollingCapture::Testing {

/// Windows of a page, each a step away from the one before, and the translations between them.
class ScrolledPage {
 public:
  explicit ScrolledPage(const std::vector<cv::Point>& windowMotions) {
    cv::Rect window(20, 20, 90, 80);
    windows.push_back(window);
    for (const cv::Point& motion : windowMotions) {
      window += motion;
      windows.push_back(window);
      translations.emplace_back(-motion.y, -motion.x);
    }
  }

  BasicImageProvider Captures() const {
    BasicImageProvider captures;
    for (const cv::Rect& window : windows) {
      cv::Mat capture = page(window).clone();
      captures.Add(capture);
    }
    return captures;
  }

  std::vector<Translation> translations;

 private:
  const cv::Mat page = TextPage({300, 400});
  std::vector<cv::Rect> windows;
};

/// Four steps in different directions.
inline const ScrolledPage& FiveCaptures() {
  static const ScrolledPage page({{3, 30}, {-4, 17}, {9, 41}, {2, -12}});
  return page;
}

}  // namespace ScrollingCapture::Testing
