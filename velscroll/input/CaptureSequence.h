#pragma once

#include <string>
#include <vector>

#include <velscroll/terminal/ProgressBar.h>

#include <VelScrollingCapture/core/IImageProvider.h>
#include <VelScrollingCapture/preview/PreviewImage.h>

namespace ScrollingCapture::Program {

/// A capture file that was read.
struct CaptureFile {
  std::string path;
  bool repeated;  ///< shows the same as the last one that was kept, and was dropped
};

/// Reads capture files, one at a time, and adds them to a provider.
///
/// Throws BadInput when a file is no usable capture or the captures differ in size, and Cancelled
/// when the user stops the work.
/// @param keepRepeats whether captures that repeat the one before are added as well
/// @param preview     is shown every capture that is added; may be null
std::vector<CaptureFile> ReadCaptures(const std::vector<std::string>& files, bool keepRepeats,
                                      IImageProvider& captures, PreviewImage* preview,
                                      ProgressBar& progress);

}  // namespace ScrollingCapture::Program
