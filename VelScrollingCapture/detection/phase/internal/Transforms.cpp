#include <VelScrollingCapture/core/internal/Messages.h>
#include <VelScrollingCapture/detection/phase/internal/Transforms.h>

namespace ScrollingCapture {
namespace {

int TransformLength(int length, bool looksForMotion) {
  return cv::getOptimalDFTSize(looksForMotion ? 2 * length : length);
}

/// Dividing every component by its absolute value gives the same, but makes 0 / 0 a NaN.
void ReduceToSigns(cv::Mat& spectrum) {
  const int components = spectrum.cols * spectrum.channels();
  for (int row = 0; row < spectrum.rows; ++row) {
    auto* const values = spectrum.ptr<float>(row);
    for (int i = 0; i < components; ++i) {
      values[i] = static_cast<float>(values[i] > 0.0F) - static_cast<float>(values[i] < 0.0F);
    }
  }
}

}  // namespace

void ReportFailedTransform(const FailedTransform& failure) {
  if (failure.inverse) {
    TellError("Error: PerformIDFT failed.");
    TellError("Error: Failed to perform IDFT.");
  } else {
    TellError("Error: PerformDFT failed.");
    TellError("Error: Failed to perform DFT.");
  }
}

bool LooksForRows(ScrollOrientation orientation) {
  return orientation == ScrollOrientation::Vertical || orientation == ScrollOrientation::Both;
}

bool LooksForColumns(ScrollOrientation orientation) {
  return orientation == ScrollOrientation::Horizontal || orientation == ScrollOrientation::Both;
}

cv::Size TransformSize(const cv::Size& image, ScrollOrientation orientation) {
  return {TransformLength(image.width, LooksForColumns(orientation)),
          TransformLength(image.height, LooksForRows(orientation))};
}

void Transform(const cv::Mat& source, cv::Mat& destination, int flags) {
  cv::dft(source, destination, flags);
  if (destination.empty()) {
    throw FailedTransform{(flags & cv::DFT_INVERSE) != 0};
  }
}

cv::Mat FullSpectrum(const cv::Mat& grey, const cv::Size& dftSize) {
  cv::Mat enlarged(dftSize, CV_32FC1, cv::Scalar(0));
  const cv::Point start(CentredStart(dftSize.width, grey.cols),
                        CentredStart(dftSize.height, grey.rows));
  grey.convertTo(enlarged(cv::Rect(start, grey.size())), CV_32F);
  Transform(enlarged, enlarged, cv::DFT_COMPLEX_OUTPUT);
  return enlarged;
}

cv::Mat InverseOfFullSpectrum(const cv::Mat& spectrum) {
  cv::Mat surface;
  Transform(spectrum, surface, cv::DFT_INVERSE | cv::DFT_REAL_OUTPUT);
  return surface;
}

void CrossPowerSigns(const cv::Mat& first, const cv::Mat& second, cv::Mat& signs) {
  constexpr bool ConjugateSecond = true;
  cv::mulSpectrums(first, second, signs, 0, ConjugateSecond);
  ReduceToSigns(signs);
}

cv::Mat SurfaceOfFullSpectra(const cv::Mat& firstGrey, const cv::Mat& secondGrey,
                             ScrollOrientation orientation) {
  cv::Mat product;
  {
    const cv::Mat first = FullSpectrum(firstGrey, TransformSize(firstGrey.size(), orientation));
    const cv::Mat second = FullSpectrum(secondGrey, TransformSize(secondGrey.size(), orientation));
    CrossPowerSigns(first, second, product);
  }
  return InverseOfFullSpectrum(product);
}

}  // namespace ScrollingCapture
