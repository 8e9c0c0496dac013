#pragma once

#include <string>
#include <vector>

#include <opencv2/core.hpp>
#include <velscroll/terminal/ProgressBar.h>

#include <VelScrollingCapture/core/IImageProvider.h>
#include <VelScrollingCapture/core/IStitcher.h>
#include <VelScrollingCapture/core/Translation.h>

namespace ScrollingCapture::Program {

/// What came of a stitch.
struct Stitched {
  cv::Mat image;                          ///< CV_8UC4: red, green, blue, premultiplied alpha
  std::vector<Translation> translations;  ///< between consecutive captures of the provider
  double detectionSeconds = 0;
  double composingSeconds = 0;
  std::vector<std::string> remarks;  ///< what the library said meanwhile
};

/// Stitches the captures, with progress on the bar and Ctrl-C answered. Throws Failed or Cancelled.
Stitched RunStitch(IStitcher& stitcher, IImageProvider& captures, ProgressBar& progress);

}  // namespace ScrollingCapture::Program
