#include <gtest/gtest.h>
#include <testkit/MatrixTesting.h>

#include <VelScrollingCapture/detection/phase/internal/PackedRows.h>

namespace ScrollingCapture {
namespace {

using Testing::SameBits;

constexpr int Rows = 3;

/// Widths whose transforms end in a real number, and in a complex one.
class PackedRowsOfWidth : public testing::TestWithParam<int> {
 protected:
  PackedRowsOfWidth() {
    cv::RNG random(1);
    random.fill(reals, cv::RNG::UNIFORM, 0, 255);
  }

  cv::Mat reals = cv::Mat(Rows, GetParam(), CV_32FC1);
  PackedRows spectra{Rows, GetParam()};
};

TEST_P(PackedRowsOfWidth, UnpackToTheFirstHalfOfTheComplexSpectrum) {
  cv::Mat packed = spectra.Packed(Rows);
  cv::dft(reals, packed, cv::DFT_ROWS);
  spectra.Unpack();
  cv::Mat whole;
  cv::dft(reals, whole, cv::DFT_ROWS | cv::DFT_COMPLEX_OUTPUT);
  EXPECT_TRUE(SameBits(spectra.Complex(Rows), whole.colRange(0, GetParam() / 2 + 1)));
}

TEST_P(PackedRowsOfWidth, PackToWhatTheRealInverseTakes) {
  cv::Mat packed = spectra.Packed(Rows);
  cv::dft(reals, packed, cv::DFT_ROWS);
  const cv::Mat before = packed.clone();
  spectra.Unpack();
  spectra.Pack();
  EXPECT_TRUE(SameBits(spectra.Packed(Rows), before));
}

INSTANTIATE_TEST_SUITE_P(Widths, PackedRowsOfWidth, testing::Values(1, 2, 3, 15, 16, 45));

}  // namespace
}  // namespace ScrollingCapture
