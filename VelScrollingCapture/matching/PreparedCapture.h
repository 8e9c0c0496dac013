#pragma once

#include <cstddef>
#include <memory>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/core/Export.h>

namespace ScrollingCapture {

struct CaptureAnchors;

/// What is computed of a capture once and for all before it is matched: its anchors. A handle:
/// copies share what they refer to, which never changes, so any thread may read it.
///
/// Where every place of a capture differs from those around it, the anchors take about an eighth of
/// a byte for each pixel of a large capture (a sixteenth with one channel), a quarter below
/// 1,500,000 pixels, half below 300,000, one below 80,000, and two below 20,000: small captures
/// need more of them. Plain surroundings take nothing.
class VEL_EXPORT PreparedCapture {
 public:
  /// Refers to nothing.
  PreparedCapture() = default;

  /// Prepares a capture. Its pixels are not kept.
  /// @param capture pixels of 8 bits in 1, 3 or 4 channels (with four, the last one is alpha);
  ///                std::invalid_argument is thrown for others
  explicit PreparedCapture(const cv::Mat& capture);

  /// How much memory the anchors take.
  std::size_t Bytes() const;

  /// For the library's own use.
  const CaptureAnchors& Anchors() const { return *anchors; }

 private:
  std::shared_ptr<const CaptureAnchors> anchors;
};

}  // namespace ScrollingCapture
