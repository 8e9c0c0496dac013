#pragma once

#include <opencv2/core.hpp>

#include <VelScrollingCapture/core/ScrollOrientation.h>

namespace ScrollingCapture {

/// Thrown inside the detection when a transform leaves an empty matrix; callers never see it.
struct FailedTransform {
  bool inverse;
};

/// Writes the two lines that tell of a failed transform.
void ReportFailedTransform(const FailedTransform& failure);

/// Whether row offsets, and whether column offsets, are looked for.
bool LooksForRows(ScrollOrientation orientation);
bool LooksForColumns(ScrollOrientation orientation);

/// The size of the transform of an image: twice as large in the directions that are looked in, so
/// that both signs of an offset stay distinguishable, and rounded up to what cv::dft likes.
cv::Size TransformSize(const cv::Size& image, ScrollOrientation orientation);

/// Where an image that is centred in a transform begins; an odd pixel of margin comes after it.
inline int CentredStart(int transformLength, int imageLength) {
  return (transformLength - imageLength) / 2;
}

/// cv::dft that throws FailedTransform when it gives nothing. `destination` may be a view or the
/// source itself.
void Transform(const cv::Mat& source, cv::Mat& destination, int flags);

/// The full complex spectrum (CV_32FC2) of a grey image that is centred in zeros.
cv::Mat FullSpectrum(const cv::Mat& grey, const cv::Size& dftSize);

/// The real inverse transform (CV_32FC1) of a full complex spectrum, not scaled.
cv::Mat InverseOfFullSpectrum(const cv::Mat& spectrum);

/// The signs (-1, 0 or 1) of the real and the imaginary parts of `first` times the conjugate of
/// `second`, element by element (CV_32FC2). `signs` may be `first`.
void CrossPowerSigns(const cv::Mat& first, const cv::Mat& second, cv::Mat& signs);

/// The correlation surface of two grey images, by transforms of whole matrices. It takes any sizes
/// that cv::mulSpectrums takes, and passes its exception on otherwise.
cv::Mat SurfaceOfFullSpectra(const cv::Mat& firstGrey, const cv::Mat& secondGrey,
                             ScrollOrientation orientation);

}  // namespace ScrollingCapture
