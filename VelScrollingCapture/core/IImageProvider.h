#pragma once

#include <cstddef>
#include <memory>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/core/Export.h>

namespace ScrollingCapture {

/// An ordered sequence of captures, addressed by index from 0.
///
/// Captures are 8-bit matrices of equal size with the channels red, green, blue, alpha (alpha
/// premultiplied). A provider holds matrix headers: pixels are shared with the caller, and a stitch
/// may write into them. While nobody adds or removes captures, GetImageAt must be safe to call from
/// several threads at once; nothing else needs to be.
class VEL_EXPORT IImageProvider {
 public:
  virtual ~IImageProvider() = default;

  /// The number of captures.
  virtual size_t Count() = 0;

  /// True when there is no capture.
  virtual bool IsEmpty() = 0;

  /// The capture at `index`; the caller shares its ownership.
  virtual std::shared_ptr<cv::Mat> GetImageAt(size_t index) = 0;

  /// Puts `image` in the place of the capture at `index`; its pixels are shared, not copied.
  virtual void SetImageAt(size_t index, cv::Mat& image) = 0;

  /// Removes all captures.
  virtual void Clear() = 0;

  /// Appends `image`; its pixels are shared, not copied.
  virtual void Add(cv::Mat& image) = 0;

  /// The last capture; call it only when there is one.
  virtual std::shared_ptr<cv::Mat> GetLastImage() = 0;
};

}  // namespace ScrollingCapture
