#pragma once

#include <memory>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/preview/PreviewImage.h>

namespace ScrollingCapture {

/// A preview as hosts show it: its canvas begins at the size of the box that it is shown in. Throws
/// cv::Exception when that cannot be allocated.
inline std::unique_ptr<PreviewImage> MakeHostPreview(const cv::Size& box) {
  constexpr int FirstRow = 1;
  constexpr int FirstColumn = 0;
  return std::make_unique<PreviewImage>(box, FirstRow, FirstColumn);
}

}  // namespace ScrollingCapture
