#include <VelScrollingCapture/session/internal/RecordedBorders.h>

namespace ScrollingCapture {

bool RecordedBorders::ExtractBorders(IImageProvider& images) {
  found.reset();
  return BasicBorderDetection::ExtractBorders(images);
}

bool RecordedBorders::CopyBorders(const cv::Mat& image, const cv::Range& rows,
                                  const cv::Range& columns) {
  if (!BasicBorderDetection::CopyBorders(image, rows, columns)) {
    return false;
  }
  found = FixedBorders{{columns.start, rows.start, columns.size(), rows.size()},
                       rows.start,
                       image.rows - rows.end,
                       columns.start,
                       image.cols - columns.end};
  return true;
}

}  // namespace ScrollingCapture
