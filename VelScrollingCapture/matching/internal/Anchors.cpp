#include <limits>
#include <stdexcept>

#include <VelScrollingCapture/matching/internal/Anchors.h>
#include <VelScrollingCapture/matching/internal/PatchHashes.h>
#include <VelScrollingCapture/matching/internal/RadixSort.h>

namespace ScrollingCapture {

void RequireUsableCapture(const cv::Mat& capture) {
  const int channels = capture.channels();
  const bool isUsable = capture.dims == 2 && !capture.empty() && capture.depth() == CV_8U &&
                        (channels == 1 || channels == 3 || channels == 4);
  if (!isUsable) {
    throw std::invalid_argument("A capture needs pixels of 8 bits in 1, 3 or 4 channels.");
  }
  if (capture.total() > std::numeric_limits<std::uint32_t>::max()) {
    throw std::invalid_argument("A capture has too many pixels.");
  }
}

int SelectingZeroBits(const cv::Size& size, int channels) {
  const std::int64_t area = std::int64_t{size.width} * size.height;
  if (area < 20'000) {
    return 2;
  }
  if (area < 80'000) {
    return 3;
  }
  if (area < 300'000) {
    return 4;
  }
  if (channels == 1) {
    return 7;
  }
  return area < 1'500'000 ? 5 : 6;
}

CaptureAnchors FindAnchors(const cv::Mat& capture) {
  Selection selection = SelectPatches(
      capture, SelectingZeroBits(capture.size(), capture.channels()), Vectors::Widest);
  RadixSort(selection.anchors, [](const Anchor& anchor) { return anchor.hash; });
  // Narrower captures than a patch are not looked at.
  const bool arePixelsKeys = capture.channels() == 4 && capture.cols > PatchSide &&
                             !selection.hasColouredTransparentPixels;
  return {capture.size(), capture.type(),
          std::vector<Anchor>(selection.anchors.begin(), selection.anchors.end()), arePixelsKeys};
}

}  // namespace ScrollingCapture
