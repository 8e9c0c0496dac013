#include <iostream>

#include <opencv2/core.hpp>
#include <velscroll/input/CaptureSequence.h>
#include <velscroll/input/ImageFile.h>
#include <velscroll/terminal/Failure.h>
#include <velscroll/terminal/Interruption.h>
#include <velscroll/terminal/StreamHold.h>

#include <VelScrollingCapture/similarity/RepeatFilter.h>

namespace ScrollingCapture::Program {
namespace {

std::string Pixels(const cv::Size& size) {
  return std::to_string(size.width) + " x " + std::to_string(size.height);
}

/// The library places every capture with the size of the first.
void RequireSameSize(const std::string& firstFile, const cv::Size& firstSize,
                     const std::string& file, const cv::Size& size) {
  if (size != firstSize) {
    throw BadInput(Quoted(firstFile) + " has " + Pixels(firstSize) + " pixels, but " +
                   Quoted(file) + " has " + Pixels(size) +
                   "; all captures must have the same size");
  }
}

/// The preview goes on without a capture that it cannot place, and without telling of it.
void ShowTo(PreviewImage* preview, const cv::Mat& capture) {
  if (preview != nullptr) {
    const StreamHold standardError(std::cerr);
    preview->AddCapture(capture);
  }
}

}  // namespace

std::vector<CaptureFile> ReadCaptures(const std::vector<std::string>& files, bool keepRepeats,
                                      IImageProvider& captures, PreviewImage* preview,
                                      ProgressBar& progress) {
  std::vector<CaptureFile> read;
  cv::Size size;
  for (const std::string& file : files) {
    StopIfInterrupted();
    progress.Show("Reading", static_cast<int>(100 * read.size() / files.size()));
    cv::Mat capture = ReadCapture(file);
    if (read.empty()) {
      size = capture.size();
    }
    RequireSameSize(files.front(), size, file, capture.size());
    const bool repeated = !keepRepeats && RepeatsLastCapture(captures, capture);
    if (!repeated) {
      captures.Add(capture);
      ShowTo(preview, capture);
    }
    read.push_back({file, repeated});
  }
  return read;
}

}  // namespace ScrollingCapture::Program
