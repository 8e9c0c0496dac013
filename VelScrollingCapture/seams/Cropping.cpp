#include <algorithm>
#include <cstring>
#include <optional>

#include <VelScrollingCapture/core/Utilities.h>
#include <VelScrollingCapture/core/internal/Messages.h>
#include <VelScrollingCapture/seams/Seam.h>

namespace ScrollingCapture {
namespace {

/// The part of [0, length) between two ends, both included, in either order.
cv::Range RunBetween(int first, int last, int length) {
  const auto [low, high] = std::minmax(first, last);
  return {std::max(low, 0), std::min(high, length - 1) + 1};
}

/// Sets all channels to 0; an empty or inverted range is left alone.
void ClearBlock(cv::Mat& image, const cv::Range& rows, const cv::Range& columns) {
  if (columns.end <= columns.start || rows.end <= rows.start) {
    return;
  }
  const size_t bytes = static_cast<size_t>(columns.size()) * image.elemSize();
  if (bytes == image.step[0]) {
    std::memset(image.ptr(rows.start), 0, bytes * static_cast<size_t>(rows.size()));
    return;
  }
  for (int row = rows.start; row < rows.end; ++row) {
    std::memset(image.ptr(row, columns.start), 0, bytes);
  }
}

/// Straight seams keep the same of many rows, which are cleared at once.
void ClearWhatIsNotKept(cv::Mat& image, const Seam& seam) {
  for (int row = 0, end = 0; row < image.rows; row = end) {
    const cv::Range& kept = seam.KeptColumns(row);
    end = row + 1;
    while (end < image.rows && seam.KeptColumns(end) == kept) {
      ++end;
    }
    ClearBlock(image, {row, end}, {0, kept.start});
    ClearBlock(image, {row, end}, {kept.end, image.cols});
  }
}

}  // namespace

void Utilities::MakeRowTransparent(cv::Mat& image, const cv::Point& start,
                                   bool towardsFirstColumn) {
  const int end = towardsFirstColumn ? 0 : image.cols - 1;
  ClearBlock(image, RunBetween(start.y, start.y, image.rows), RunBetween(start.x, end, image.cols));
}

void Utilities::MakeColumnTransparent(cv::Mat& image, const cv::Point& start,
                                      bool towardsFirstRow) {
  const int end = towardsFirstRow ? 0 : image.rows - 1;
  ClearBlock(image, RunBetween(start.y, end, image.rows), RunBetween(start.x, start.x, image.cols));
}

void Utilities::ClipCorner(cv::Mat& image, const cv::Point& first, const cv::Point& second,
                           bool towardsOrigin) {
  const std::optional<Seam> seam = Seam::Along({first, second, towardsOrigin}, image.size());
  if (!seam) {
    TellErrorWithoutFlush("Points given are out of the bounds for the given matrix");
    return;
  }
  ClearWhatIsNotKept(image, *seam);
}

void Utilities::CropCaptureImage(cv::Mat& capture, const Translation& translation,
                                 const cv::Rect& captureSize) {
  const auto [first, second, towardsOrigin] = CutLineOf(translation, captureSize.size());
  ClipCorner(capture, first, second, towardsOrigin);
}

}  // namespace ScrollingCapture
