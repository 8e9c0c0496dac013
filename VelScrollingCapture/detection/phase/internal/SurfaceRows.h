#pragma once

#include <vector>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/detection/phase/internal/PackedRows.h>

namespace ScrollingCapture {

/// The correlation surface behind a matrix of correlated columns (see SpectrumColumns.h), made in
/// blocks of rows, in any order and only as far as it is asked for.
class SurfaceRows {
 public:
  /// Rows first ... last of the surface, none of whose values exceeds the bound.
  struct Block {
    cv::Range rows;
    float bound;
  };

  /// @param correlated must live as long as this
  SurfaceRows(cv::Mat correlated, const cv::Size& dftSize);

  /// All blocks, from the top down.
  ///
  /// A value is the sum of its row's coefficients, each turned by some angle, so it is at most the
  /// sum of their magnitudes; a generous margin covers what single precision adds to either.
  std::vector<Block> Blocks() const;

  /// Inverts some rows (no more than a block has). The result (CV_32FC1) may be changed, and lasts
  /// until the next call.
  cv::Mat& Invert(const cv::Range& rows);

 private:
  std::vector<float> RowBounds() const;

  const cv::Mat correlated;
  PackedRows spectra;
  cv::Mat inverted;
};

}  // namespace ScrollingCapture
