#include <algorithm>
#include <memory>
#include <vector>

#include <VelScrollingCapture/core/internal/Grey.h>
#include <VelScrollingCapture/core/internal/Messages.h>
#include <VelScrollingCapture/detection/phase/internal/PairDetection.h>
#include <VelScrollingCapture/detection/phase/internal/PairInSequence.h>
#include <VelScrollingCapture/detection/phase/internal/SpectrumColumns.h>
#include <VelScrollingCapture/detection/phase/internal/SurfaceRows.h>
#include <VelScrollingCapture/detection/phase/internal/Transforms.h>

namespace ScrollingCapture {
namespace {

/// The offset that a peak stands for in a dimension of the given length.
int OffsetOfPeak(int peak, int length) { return peak < length / 2 ? -peak : length - peak; }

}  // namespace

Translation TranslationOfPeak(const int (&peak)[2], const cv::Size& dftSize,
                              ScrollOrientation orientation) {
  const int rows = LooksForRows(orientation) ? OffsetOfPeak(peak[0], dftSize.height) : 0;
  const int cols = LooksForColumns(orientation) ? OffsetOfPeak(peak[1], dftSize.width) : 0;
  return {rows, cols};
}

Translation PairDetection::Detect(const cv::Mat& first, const cv::Mat& second) const {
  PeakSearch peaks(false);
  if (!Search(first, second, peaks)) {
    return {};
  }
  return TranslationOfPeak(peaks.Highest().position, SizeOfTransform(first), orientation);
}

Translation PairDetection::DetectWithAlternative(const cv::Mat& first, const cv::Mat& second,
                                                 Translation& alternative) const {
  PeakSearch peaks(true);
  if (!Search(first, second, peaks)) {
    return {};
  }
  const cv::Size dftSize = SizeOfTransform(first);
  alternative = TranslationOfPeak(peaks.Alternative().position, dftSize, orientation);
  return TranslationOfPeak(peaks.Highest().position, dftSize, orientation);
}

cv::Mat PairDetection::Surface(const cv::Mat& first, const cv::Mat& second) const {
  const cv::Mat firstGrey = GreyOf(first);
  const cv::Mat secondGrey = GreyOf(second);
  if (!CanGoByColumns(first, second)) {
    return SurfaceOfFullSpectra(firstGrey, secondGrey, orientation);
  }
  const std::shared_ptr<const cv::Mat> correlated = Correlate(firstGrey, secondGrey);
  const cv::Size dftSize = SizeOfTransform(first);
  cv::Mat surface(dftSize, CV_32FC1);
  SurfaceRows rows(*correlated, dftSize);
  for (const SurfaceRows::Block& block : rows.Blocks()) {
    rows.Invert(block.rows).copyTo(surface.rowRange(block.rows));
  }
  return surface;
}

/// Looks first where the highest value may be, and stops where it cannot be any more. Tells of a
/// failed transform and returns false then.
bool PairDetection::Search(const cv::Mat& first, const cv::Mat& second, PeakSearch& peaks) const {
  try {
    const cv::Mat firstGrey = GreyOf(first);
    const cv::Mat secondGrey = GreyOf(second);
    if (!CanGoByColumns(first, second)) {
      cv::Mat surface = SurfaceOfFullSpectra(firstGrey, secondGrey, orientation);
      peaks.Add(0, surface);
      return true;
    }
    const std::shared_ptr<const cv::Mat> correlated = Correlate(firstGrey, secondGrey);
    SurfaceRows rows(*correlated, SizeOfTransform(first));
    std::vector<SurfaceRows::Block> blocks = rows.Blocks();
    std::sort(blocks.begin(), blocks.end(),
              [](const auto& one, const auto& other) { return one.bound > other.bound; });
    for (const SurfaceRows::Block& block : blocks) {
      if (!peaks.MayFindMore(block.bound)) {
        break;
      }
      peaks.Add(block.rows.start, rows.Invert(block.rows));
    }
    return true;
  } catch (const FailedTransform& failure) {
    ReportFailedTransform(failure);
    TellError("Failed to create correlation matrix.");
    return false;
  }
}

std::shared_ptr<const cv::Mat> PairDetection::Correlate(const cv::Mat& firstGrey,
                                                        const cv::Mat& secondGrey) const {
  const cv::Size dftSize = SizeOfTransform(firstGrey);
  return pair != nullptr
             ? pair->CorrelateImages(firstGrey, secondGrey, dftSize)
             : std::make_shared<const cv::Mat>(CorrelateImages(firstGrey, secondGrey, dftSize));
}

cv::Size PairDetection::SizeOfTransform(const cv::Mat& image) const {
  return TransformSize(image.size(), orientation);
}

bool PairDetection::CanGoByColumns(const cv::Mat& first, const cv::Mat& second) const {
  const cv::Size dftSize = SizeOfTransform(first);
  return dftSize == SizeOfTransform(second) && ColumnsGiveTheSameBits(dftSize);
}

}  // namespace ScrollingCapture
