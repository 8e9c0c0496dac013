#pragma once

#include <cstddef>
#include <memory>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/core/IImageProvider.h>

namespace ScrollingCapture {

/// Hands out captures to read, all of one size and type.
class CaptureSource {
 public:
  /// Throws UnusableCapture when the first capture has no pixels, or not of 8 bits a channel.
  explicit CaptureSource(IImageProvider& provider);

  /// The same part of every capture of another source.
  CaptureSource(const CaptureSource& whole, const cv::Rect& part);

  size_t Count() const { return count; }

  /// The size of what Get gives.
  cv::Size CaptureSize() const { return part.size(); }
  int Type() const { return type; }

  /// The capture at `index`, or its part. Throws UnusableCapture when it is not like the
  /// first one; exceptions of the provider pass.
  std::shared_ptr<const cv::Mat> Get(size_t index) const;

 private:
  IImageProvider& provider;
  size_t count;
  cv::Size size;
  cv::Rect part;
  int type = 0;
};

}  // namespace ScrollingCapture
