#pragma once

#include <atomic>
#include <mutex>
#include <string>
#include <thread>

#include <live/x11/XConnection.h>
#include <opencv2/core.hpp>

namespace ScrollingCapture::Testing {

/// A program with a window over a page, which its wheel scrolls.
class PageWindow {
 public:
  /// Is on the screen when it returns.
  /// @param page CV_8UC4: red, green, blue, opaque
  PageWindow(cv::Mat page, const cv::Rect& area, const std::string& title);
  PageWindow(const PageWindow&) = delete;
  PageWindow& operator=(const PageWindow&) = delete;
  ~PageWindow();

  xcb_window_t Number() const { return window; }

  /// What the window shows at a row of the page.
  cv::Mat ViewAt(int row) const { return page({{0, row}, area.size()}).clone(); }

  /// These are done when they return.
  void ScrollTo(int row);
  void MoveTo(const cv::Point& place);
  void Resize(const cv::Size& size);
  void Hide();
  void Show();
  void Close();

  /// Holds the pointer, as an open menu does.
  void HoldPointer();

  /// How often a key or a button was pressed in it; four turns of a wheel are four presses.
  int Presses() const { return presses; }

 private:
  void Listen();
  void Take(const xcb_generic_event_t& event);
  void Draw();
  bool IsOpen() const { return window != XCB_WINDOW_NONE; }

  static constexpr int RowsOfStep = 40;

  const Live::XConnection connection;
  const cv::Mat page;
  const cv::Rect area;
  xcb_window_t window = XCB_WINDOW_NONE;
  xcb_gcontext_t context = 0;
  std::mutex mutex;  ///< of what follows
  int row = 0;
  std::atomic<int> presses{0};
  std::thread listener;
};

}  // namespace ScrollingCapture::Testing
