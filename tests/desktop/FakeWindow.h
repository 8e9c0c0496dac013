#pragma once

#include <algorithm>
#include <atomic>
#include <memory>
#include <string>
#include <thread>

#include <desktop/recording/CaptureChoice.h>
#include <live/ICaptureSource.h>
#include <opencv2/core.hpp>
#include <testkit/pages/Page.h>

namespace ScrollingCapture::Desktop {

/// A window on a page, which a test scrolls while it is recorded.
struct FakeWindow {
  cv::Mat page = Testing::TextPage({240, 900});
  cv::Rect region{100, 100, 240, 200};  ///< on the screen
  std::atomic<int> row{0};              ///< of the page, at the window's top
  std::atomic<bool> isClosed{false};

  int LastRow() const { return page.rows - region.height; }

  /// The page down to what the window shows.
  cv::Mat Seen() const { return page.rowRange(0, row + region.height); }
};

/// Captures such a window.
class FakeSource : public Live::ICaptureSource {
 public:
  explicit FakeSource(FakeWindow& window) : window(window) {}

  cv::Rect Region() const override { return window.region; }

  bool WaitForChange(std::chrono::milliseconds timeout) override {
    std::this_thread::sleep_for(std::min(timeout, std::chrono::milliseconds(5)));
    if (window.isClosed) {
      throw Live::CaptureEnded("the window was closed");
    }
    return window.row != grabbedRow;
  }

  Live::Frame Grab() override {
    grabbedRow = window.row;
    return {window.page(cv::Rect({0, grabbedRow}, window.region.size())).clone(), {}};
  }

  std::string Scroll(Live::ScrollDirection direction, int steps) override {
    constexpr int RowsOfStep = 25;
    const int rows = direction == Live::ScrollDirection::Down ? RowsOfStep : -RowsOfStep;
    window.row = std::clamp(window.row + rows * steps, 0, window.LastRow());
    return {};
  }

 private:
  FakeWindow& window;
  int grabbedRow = -1;
};

/// A user who has chosen a window.
inline PickSource PickOf(FakeWindow& window) {
  return [&window](const RecordingOptions& /*options*/, const std::function<bool()>& /*goOn*/) {
    return OpenSource([&window] { return std::make_unique<FakeSource>(window); });
  };
}

}  // namespace ScrollingCapture::Desktop
