#pragma once

#include <algorithm>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <thread>

#include <live/ICaptureSource.h>
#include <opencv2/core.hpp>

namespace ScrollingCapture::Testing {

/// A window over a page. It takes places as a script tells, one after the other, and comes to rest
/// where the script says so; a wheel moves it by so many pixels a step.
class ScriptedSource : public Live::ICaptureSource {
 public:
  ScriptedSource(cv::Mat page, const cv::Size& window) : page(std::move(page)), size(window) {}

  cv::Rect Region() const override { return {{}, size}; }

  bool WaitForChange(std::chrono::milliseconds timeout) override {
    if (!ahead.empty()) {
      const std::function<void()> next = ahead.front();
      ahead.pop_front();
      if (next) {
        next();
        return true;
      }
    }
    std::this_thread::sleep_for(timeout);
    return false;
  }

  Live::Frame Grab() override {
    return hindrance.empty() ? Live::Frame{page({place, size}).clone(), {}}
                             : Live::Frame{{}, hindrance};
  }

  std::string Scroll(Live::ScrollDirection direction, int steps) override {
    if (obstacle.empty()) {
      const int sign =
          direction == Live::ScrollDirection::Down || direction == Live::ScrollDirection::Right
              ? 1
              : -1;
      const bool isUpright =
          direction == Live::ScrollDirection::Down || direction == Live::ScrollDirection::Up;
      const cv::Point step = isUpright ? cv::Point(0, sign) : cv::Point(sign, 0);
      Go(place + step * (steps * pixelsOfStep));
    }
    return obstacle;
  }

  /// Moves the window later on, but not beyond the page.
  void Go(const cv::Point& to) {
    ahead.emplace_back([this, to] {
      place = {std::clamp(to.x, 0, page.cols - size.width),
               std::clamp(to.y, 0, page.rows - size.height)};
    });
  }

  /// Lets nothing happen for a while.
  void Rest() { ahead.insert(ahead.end(), 10, nullptr); }

  void Then(std::function<void()> action) { ahead.push_back(std::move(action)); }

  bool IsDone() const { return ahead.empty(); }

  cv::Point place;
  int pixelsOfStep = 40;
  std::string hindrance;  ///< of seeing
  std::string obstacle;   ///< of scrolling
  cv::Mat page;

 private:
  const cv::Size size;
  std::deque<std::function<void()>> ahead;
};

}  // namespace ScrollingCapture::Testing
