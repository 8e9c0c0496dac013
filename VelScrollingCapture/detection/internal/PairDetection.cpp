#include <iostream>
#include <memory>

#include <VelScrollingCapture/detection/internal/PairDetection.h>
#include <VelScrollingCapture/detection/internal/SharedSpectra.h>
#include <VelScrollingCapture/detection/internal/SpectrumColumns.h>
#include <VelScrollingCapture/detection/internal/Transforms.h>

namespace ScrollingCapture {
namespace {

/// A second candidate counts only above this share of the highest surface value.
constexpr double AlternativeThreshold = 0.5;

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
  const std::optional<PeakSearch> peaks = SearchSurface(first, second);
  if (!peaks) {
    return {};
  }
  const cv::Size dftSize = TransformSize(first.size(), orientation);
  return TranslationOfPeak(peaks->Highest().position, dftSize, orientation);
}

/// The second-highest value may be a neighbour of the highest: only the peak itself is left out.
Translation PairDetection::DetectWithAlternative(const cv::Mat& first, const cv::Mat& second,
                                                 Translation& alternative) const {
  const std::optional<PeakSearch> peaks = SearchSurface(first, second);
  if (!peaks) {
    return {};
  }
  const Peak& highest = peaks->Highest();
  const Peak& secondHighest = peaks->SecondHighest();
  const bool isStrong = secondHighest.value > AlternativeThreshold * highest.value;
  const cv::Size dftSize = TransformSize(first.size(), orientation);
  const Translation best = TranslationOfPeak(highest.position, dftSize, orientation);
  alternative = isStrong ? TranslationOfPeak(secondHighest.position, dftSize, orientation) : best;
  return best;
}

void PairDetection::MakeSurface(const cv::Mat& first, const cv::Mat& second,
                                const TakeRows& take) const {
  const cv::Mat firstGrey = GreyOf(first);
  const cv::Mat secondGrey = GreyOf(second);
  const cv::Size dftSize = TransformSize(first.size(), orientation);
  const bool sameSize = dftSize == TransformSize(second.size(), orientation);
  if (sameSize && ColumnsGiveTheSameBits(dftSize)) {
    InvertRows(*CorrelateColumns(firstGrey, secondGrey, dftSize), dftSize, take);
  } else {
    cv::Mat surface = SurfaceOfFullSpectra(firstGrey, secondGrey, orientation);
    take(0, surface);
  }
}

/// Tells of a failed transform and gives nothing then.
std::optional<PeakSearch> PairDetection::SearchSurface(const cv::Mat& first,
                                                       const cv::Mat& second) const {
  try {
    PeakSearch peaks;
    MakeSurface(first, second, [&](int firstRow, cv::Mat& rows) { peaks.Add(firstRow, rows); });
    return peaks;
  } catch (const FailedTransform& failure) {
    ReportFailedTransform(failure);
    std::cerr << "Failed to create correlation matrix." << std::endl;
    return std::nullopt;
  }
}

std::shared_ptr<const cv::Mat> PairDetection::CorrelateColumns(const cv::Mat& firstGrey,
                                                               const cv::Mat& secondGrey,
                                                               const cv::Size& dftSize) const {
  return sharedSpectra != nullptr
             ? sharedSpectra->CorrelateImages(firstGrey, secondGrey, dftSize)
             : std::make_shared<const cv::Mat>(CorrelateImages(firstGrey, secondGrey, dftSize));
}

}  // namespace ScrollingCapture
