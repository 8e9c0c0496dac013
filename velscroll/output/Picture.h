#pragma once

#include <functional>

#include <opencv2/core.hpp>

namespace ScrollingCapture::Program {

/// A picture whose pixels are made when they are asked for.
struct Picture {
  cv::Size size;

  /// Whether no pixel is even partly transparent. A picture that is, but is said not to be, gets an
  /// alpha channel for nothing.
  bool opaque;

  /// The pixels of an area within the picture: CV_8UC4 with the channels red, green, blue and
  /// premultiplied alpha. Nobody changes them afterwards. Called by one thread at a time; may
  /// throw.
  std::function<cv::Mat(const cv::Rect&)> render;
};

}  // namespace ScrollingCapture::Program
