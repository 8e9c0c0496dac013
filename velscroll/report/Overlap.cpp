#include <opencv2/imgproc.hpp>
#include <velscroll/report/Overlap.h>

namespace ScrollingCapture::Program {
namespace {

/// Measured on captures of text, photos and maps: right translations gave 0.87 and more (the lowest
/// with fixed toolbars in the captures), wrong ones up to 0.67.
constexpr double LeastCorrelation = 0.75;

constexpr int AlphaChannel = 3;

cv::Mat OpaqueInBoth(const cv::Mat& first, const cv::Mat& second) {
  cv::Mat firstAlpha;
  cv::Mat secondAlpha;
  cv::extractChannel(first, firstAlpha, AlphaChannel);
  cv::extractChannel(second, secondAlpha, AlphaChannel);
  cv::Mat visible;
  cv::min(firstAlpha, secondAlpha, visible);
  return visible != 0;
}

/// The grey levels' deviation from their mean where the mask is set, and 0 elsewhere.
cv::Mat Deviation(const cv::Mat& image, const cv::Mat& mask) {
  cv::Mat grey;
  cv::cvtColor(image, grey, cv::COLOR_RGBA2GRAY);
  cv::Mat deviation;
  cv::subtract(grey, cv::mean(grey, mask), deviation, mask, CV_32F);
  deviation.setTo(0, ~mask);
  return deviation;
}

std::optional<double> Correlation(const cv::Mat& first, const cv::Mat& second) {
  const cv::Mat mask = OpaqueInBoth(first, second);
  const cv::Mat firstDeviation = Deviation(first, mask);
  const cv::Mat secondDeviation = Deviation(second, mask);
  const double firstNorm = cv::norm(firstDeviation);
  const double secondNorm = cv::norm(secondDeviation);
  if (firstNorm == 0 && secondNorm == 0) {
    return std::nullopt;
  }
  if (firstNorm == 0 || secondNorm == 0) {
    return 0.0;
  }
  return firstDeviation.dot(secondDeviation) / (firstNorm * secondNorm);
}

}  // namespace

bool Overlap::Agrees() const {
  return rows > 0 && columns > 0 && correlation.value_or(1.0) >= LeastCorrelation;
}

Overlap CompareOverlap(const cv::Mat& previous, const cv::Mat& current,
                       const Translation& translation) {
  const cv::Rect frame(cv::Point(), previous.size());
  const cv::Point shift(translation.GetCols(), translation.GetRows());
  const cv::Rect inCurrent = frame & (frame + shift);
  if (inCurrent.empty()) {
    return {};
  }
  return {inCurrent.height, inCurrent.width,
          Correlation(previous(inCurrent - shift), current(inCurrent))};
}

}  // namespace ScrollingCapture::Program
