#pragma once

#include <opencv2/core.hpp>

namespace ScrollingCapture {

/// What becomes of a window with a header, a side panel and a chat button that scrolls over a page
/// (CV_8UC4: red, green, blue, alpha).
struct MosaicPictures {
  explicit MosaicPictures(const cv::Mat& page);

  cv::Mat capture;  ///< one of the captures
  cv::Mat overlay;  ///< each capture laid over those before it
  cv::Mat mosaic;
  cv::Mat shares;  ///< the mosaic, what each capture shows in a tint of its own
};

}  // namespace ScrollingCapture
