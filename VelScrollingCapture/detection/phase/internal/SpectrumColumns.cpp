#include <algorithm>

#include <opencv2/core/utility.hpp>

#include <VelScrollingCapture/detection/phase/internal/Blocks.h>
#include <VelScrollingCapture/detection/phase/internal/PackedRows.h>
#include <VelScrollingCapture/detection/phase/internal/SpectrumColumns.h>
#include <VelScrollingCapture/detection/phase/internal/Transforms.h>

namespace ScrollingCapture {
namespace {

/// Blocks of captures of usual size that stay in a processor core's own cache.
constexpr int RowsAtOnce = 32;
constexpr int ColumnsAtOnce = 16;

/// Transforms each row of an image that is centred in `width` columns.
/// @param columns receives the transposed result: KeptColumns(width) rows of grey.rows elements
void TransformRows(const cv::Mat& grey, int width, const cv::Mat& columns) {
  cv::Mat enlarged(RowsAtOnce, width, CV_32FC1, cv::Scalar(0));
  const int start = CentredStart(width, grey.cols);
  const cv::Mat centre = enlarged.colRange(start, start + grey.cols);
  PackedRows spectra(RowsAtOnce, width);
  ForEachBlock(grey.rows, RowsAtOnce, [&](const cv::Range& rows) {
    grey.rowRange(rows).convertTo(centre.rowRange(0, rows.size()), CV_32F);
    cv::Mat packed = spectra.Packed(rows.size());
    Transform(enlarged.rowRange(0, rows.size()), packed, cv::DFT_ROWS);
    spectra.Unpack();
    cv::transpose(spectra.Complex(rows.size()), columns.colRange(rows));
  });
}

/// Transforms blocks of columns of which only the image's rows are given.
class ColumnTransform {
 public:
  ColumnTransform(int imageRows, int height)
      : enlarged(ColumnsAtOnce, height, CV_32FC2, cv::Scalar::all(0)),
        centre(enlarged.colRange(CentredStart(height, imageRows),
                                 CentredStart(height, imageRows) + imageRows)) {}

  /// @param result may share memory with the block
  void operator()(const cv::Mat& block, cv::Mat result) {
    block.copyTo(centre.rowRange(0, block.rows));
    Transform(enlarged.rowRange(0, block.rows), result, cv::DFT_ROWS);
  }

 private:
  cv::Mat enlarged;
  cv::Mat centre;
};

}  // namespace

bool ColumnsGiveTheSameBits(const cv::Size& dftSize) {
  return dftSize.width > 1 && !cv::ipp::useIPP();
}

/// The transformed rows of both images lie side by side in one matrix; each block of columns is
/// replaced by its result, which takes no more room.
cv::Mat CorrelateImages(const cv::Mat& firstGrey, const cv::Mat& secondGrey,
                        const cv::Size& dftSize) {
  const cv::Range firstPart(0, firstGrey.rows);
  const cv::Range secondPart(firstGrey.rows, firstGrey.rows + secondGrey.rows);
  cv::Mat columns(KeptColumns(dftSize.width), std::max(dftSize.height, secondPart.end), CV_32FC2);
  TransformRows(firstGrey, dftSize.width, columns.colRange(firstPart));
  TransformRows(secondGrey, dftSize.width, columns.colRange(secondPart));

  ColumnTransform transformFirst(firstGrey.rows, dftSize.height);
  ColumnTransform transformSecond(secondGrey.rows, dftSize.height);
  cv::Mat correlated = columns.colRange(0, dftSize.height);
  const cv::Mat first(ColumnsAtOnce, dftSize.height, CV_32FC2);
  const cv::Mat second(ColumnsAtOnce, dftSize.height, CV_32FC2);
  ForEachBlock(columns.rows, ColumnsAtOnce, [&](const cv::Range& block) {
    const cv::Range filled(0, block.size());
    transformFirst(columns(block, firstPart), first.rowRange(filled));
    transformSecond(columns(block, secondPart), second.rowRange(filled));
    CorrelateSpectra(first.rowRange(filled), second.rowRange(filled), correlated.rowRange(block));
  });
  return correlated;
}

void TransformImage(const cv::Mat& grey, const cv::Size& dftSize, const cv::Mat& columns) {
  const cv::Mat imageRows = columns.colRange(0, grey.rows);
  TransformRows(grey, dftSize.width, imageRows);
  ColumnTransform transform(grey.rows, dftSize.height);
  ForEachBlock(columns.rows, ColumnsAtOnce, [&](const cv::Range& block) {
    transform(imageRows.rowRange(block), columns.rowRange(block));
  });
}

void CorrelateSpectra(const cv::Mat& first, const cv::Mat& second, const cv::Mat& correlated) {
  cv::Mat signs;
  ForEachBlock(first.rows, ColumnsAtOnce, [&](const cv::Range& block) {
    CrossPowerSigns(first.rowRange(block), second.rowRange(block), signs);
    cv::Mat inverted = correlated.rowRange(block);
    Transform(signs, inverted, cv::DFT_INVERSE | cv::DFT_ROWS);
  });
}

}  // namespace ScrollingCapture
