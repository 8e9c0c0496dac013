#pragma once

#include <cstddef>
#include <string>

#include <opencv2/core.hpp>

namespace ScrollingCapture::Program {

/// Keeps captures as PNG files in a folder: capture-0001.png, capture-0002.png, ...
class CaptureFolder {
 public:
  /// Makes the folder unless it is there. Throws BadInput when that is not possible, or any file
  /// capture-*.png is in it already: those of two recordings would be stitched as one.
  /// @param folder empty: nothing is kept
  explicit CaptureFolder(const std::string& folder);

  /// The path of a capture, or its name when nothing is kept.
  /// @param index from 0
  std::string NameOf(std::size_t index) const;

  /// Keeps the next capture. One that cannot be written ends the keeping, but nothing else, for
  /// whatever reason that is.
  /// @param capture CV_8UC4: red, green, blue, opaque
  void Keep(const cv::Mat& capture);

  std::size_t Count() const { return count; }

  /// Why captures were not kept any more, in words; empty when all were.
  const std::string& Trouble() const { return trouble; }

 private:
  const std::string folder;
  std::size_t count = 0;
  std::string trouble;
};

}  // namespace ScrollingCapture::Program
