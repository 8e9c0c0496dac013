#pragma once

#include <optional>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/borders/BasicBorderDetection.h>

namespace ScrollingCapture::Program {

/// The fixed borders of a capture sequence.
struct Borders {
  cv::Rect contentBox;  ///< of a capture: what changes from capture to capture
  int top = 0;          ///< rows above the content box
  int bottom = 0;       ///< rows below it
  int left = 0;         ///< columns left of it
  int right = 0;        ///< columns right of it
};

/// Border detection that remembers, for the report, which borders it found.
class RecordedBorders : public BasicBorderDetection {
 public:
  using BasicBorderDetection::BasicBorderDetection;

  /// The borders of the last stitch; nothing when there were none.
  const std::optional<Borders>& Found() const { return found; }

 protected:
  bool ExtractBorders(IImageProvider& images) override;
  bool CopyBorders(const cv::Mat& image, const cv::Range& rows, const cv::Range& columns) override;

 private:
  std::optional<Borders> found;
};

}  // namespace ScrollingCapture::Program
