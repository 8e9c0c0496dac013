#pragma once

#include <cstdint>

#import <AppKit/AppKit.h>
#include <opencv2/core.hpp>

#include <VelScrollingCapture/core/internal/Truncation.h>

namespace ScrollingCapture::AppKit {

/// The most pixels that an image is converted with, which take four gibibytes in colour.
constexpr std::int64_t MostPixels = std::int64_t{1} << 30;

/// Whether an image has a whole point; nil has none.
inline bool HasPoints(NSImage* image) {
  return image != nil && [image size].width >= 1 && [image size].height >= 1;
}

/// The image's size in whole points; empty without a point, and for more than MostPixels.
inline cv::Size WholeSize(NSImage* image) {
  if (!HasPoints(image)) {
    return {};
  }
  const cv::Size size(TruncateToInt([image size].width), TruncateToInt([image size].height));
  return std::int64_t{size.width} * size.height <= MostPixels ? size : cv::Size();
}

/// What `convert` gives; an empty matrix where memory runs out.
template <typename Convert>
cv::Mat OrEmpty(const Convert& convert) try {
  return convert();
} catch (const cv::Exception&) {
  return {};
}

}  // namespace ScrollingCapture::AppKit
