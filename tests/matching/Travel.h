#pragma once

#include <initializer_list>
#include <memory>
#include <vector>

#include <testkit/pages/Scenes.h>

#include <VelScrollingCapture/storage/BasicImageProvider.h>

namespace ScrollingCapture::Testing {

const cv::Size TravelWindow(480, 320);

/// The captures of a window that goes from row to row of a page.
inline std::vector<cv::Mat> CapturesAt(const cv::Mat& page, std::initializer_list<int> rows) {
  std::vector<cv::Mat> captures;
  for (const int row : rows) {
    captures.push_back(Window(page, TravelWindow, {0, row}));
  }
  return captures;
}

inline std::unique_ptr<BasicImageProvider> ProviderOf(std::vector<cv::Mat> captures) {
  auto provider = std::make_unique<BasicImageProvider>();
  for (cv::Mat& capture : captures) {
    provider->Add(capture);
  }
  return provider;
}

}  // namespace ScrollingCapture::Testing
