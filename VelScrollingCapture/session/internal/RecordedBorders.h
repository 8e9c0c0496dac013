#pragma once

#include <optional>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/borders/BasicBorderDetection.h>
#include <VelScrollingCapture/session/SessionResult.h>

namespace ScrollingCapture {

/// Border detection that remembers which borders it found.
class RecordedBorders : public BasicBorderDetection {
 public:
  using BasicBorderDetection::BasicBorderDetection;

  /// The borders of the last stitch; nothing when there were none.
  const std::optional<FixedBorders>& Found() const { return found; }

 protected:
  bool ExtractBorders(IImageProvider& images) override;
  bool CopyBorders(const cv::Mat& image, const cv::Range& rows, const cv::Range& columns) override;

 private:
  std::optional<FixedBorders> found;
};

}  // namespace ScrollingCapture
