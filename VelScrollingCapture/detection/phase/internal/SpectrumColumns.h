#pragma once

#include <opencv2/core.hpp>

namespace ScrollingCapture {

/// \file
/// Correlation by one-dimensional transforms of rows and of columns.
///
/// A two-dimensional cv::dft transforms all rows and then all columns, and the inverse does it the
/// other way round. Doing the two halves here, with cv::dft over rows only, gives the same bits and
/// leaves out what is known beforehand: rows of zeros need no transform, and the columns beyond the
/// middle of a real image's spectrum mirror those before it.
///
/// Between the two halves, data lies transposed: row c of a matrix of "columns" (CV_32FC2) holds
/// column c of the spectrum, c = 0 ... width / 2. A column is then contiguous in memory, and a
/// block of them goes through all its steps within the processor's cache.

/// Whether the bits equal those of the two-dimensional cv::dft. They do not when that takes a
/// single column for a row, nor when OpenCV leaves whole matrices to IPP.
bool ColumnsGiveTheSameBits(const cv::Size& dftSize);

/// How many columns of a spectrum are kept.
inline int KeptColumns(int transformWidth) { return transformWidth / 2 + 1; }

/// Multiplies two images' spectra and inverts the columns: half of the way to their surface, which
/// SurfaceRows completes.
/// @param firstGrey  CV_8UC1
/// @param secondGrey CV_8UC1, of the same transform size
/// @return KeptColumns(dftSize.width) rows of dftSize.height elements
cv::Mat CorrelateImages(const cv::Mat& firstGrey, const cv::Mat& secondGrey,
                        const cv::Size& dftSize);

/// Transforms a grey image that is centred in zeros.
/// @param columns KeptColumns(dftSize.width) rows of dftSize.height elements, to be overwritten
void TransformImage(const cv::Mat& grey, const cv::Size& dftSize, const cv::Mat& columns);

/// As CorrelateImages, from what TransformImage gave.
/// @param correlated as large as `first` and `second`, to be overwritten; may be one of them
void CorrelateSpectra(const cv::Mat& first, const cv::Mat& second, const cv::Mat& correlated);

}  // namespace ScrollingCapture
