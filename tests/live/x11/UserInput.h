#pragma once

#include <cstdint>

#include <live/x11/XConnection.h>
#include <opencv2/core.hpp>

namespace ScrollingCapture::Testing {

/// What a user does with mouse and keyboard.
class UserInput {
 public:
  void MoveTo(const cv::Point& place) const;
  void PressButton(int button) const;
  void ReleaseButton(int button) const;

  /// @param symbol of X, such as XKB_KEY_F12
  void PressKey(std::uint32_t symbol) const;
  void ReleaseKey(std::uint32_t symbol) const;

  cv::Point Pointer() const;

 private:
  void Fake(int type, int detail) const;
  int CodeOf(std::uint32_t symbol) const;

  const Live::XConnection connection;
};

}  // namespace ScrollingCapture::Testing
