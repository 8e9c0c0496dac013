#include <ostream>

#include <gtest/gtest.h>
#include <testkit/MatrixTesting.h>

#include <VelScrollingCapture/detection/phase/internal/SpectrumColumns.h>
#include <VelScrollingCapture/detection/phase/internal/Transforms.h>

namespace ScrollingCapture {
namespace {

using Testing::SameBits;

struct Sizes {
  cv::Size image;
  cv::Size transform;
};

void PrintTo(const Sizes& sizes, std::ostream* stream) {
  *stream << sizes.image << " in " << sizes.transform;
}

/// More columns than a block has, and margins and widths that are odd.
class SpectrumColumnsOfSize : public testing::TestWithParam<Sizes> {
 protected:
  static cv::Mat Grey(std::uint64_t seed) {
    cv::Mat grey(GetParam().image, CV_8UC1);
    cv::RNG(seed).fill(grey, cv::RNG::UNIFORM, 0, 256);
    return grey;
  }

  static cv::Mat Columns(const cv::Mat& grey) {
    const cv::Size& size = GetParam().transform;
    cv::Mat columns(KeptColumns(size.width), size.height, CV_32FC2);
    TransformImage(grey, size, columns);
    return columns;
  }
};

TEST_P(SpectrumColumnsOfSize, AreTheTransposedFirstHalfOfTheFullSpectrum) {
  const cv::Mat grey = Grey(1);
  const cv::Mat full = FullSpectrum(grey, GetParam().transform);
  cv::Mat expected;
  cv::transpose(full.colRange(0, KeptColumns(GetParam().transform.width)), expected);
  EXPECT_TRUE(SameBits(Columns(grey), expected));
}

TEST_P(SpectrumColumnsOfSize, CorrelateToTheSameBitsWhetherTheyAreKeptOrNot) {
  const cv::Mat correlated = CorrelateImages(Grey(1), Grey(2), GetParam().transform);
  const cv::Mat first = Columns(Grey(1));
  const cv::Mat second = Columns(Grey(2));
  const cv::Mat apart(first.size(), CV_32FC2);
  CorrelateSpectra(first, second, apart);
  EXPECT_TRUE(SameBits(apart, correlated));
  CorrelateSpectra(first, second, first);
  EXPECT_TRUE(SameBits(first, correlated)) << "in the first one's own memory";
}

INSTANTIATE_TEST_SUITE_P(Sizes, SpectrumColumnsOfSize,
                         testing::Values(Sizes{{40, 30}, {80, 60}}, Sizes{{33, 17}, {45, 40}},
                                         Sizes{{1, 1}, {2, 2}}, Sizes{{5, 90}, {15, 180}}));

TEST(SpectrumColumns, DoNotGiveTheBitsOfATransformOfOneColumn) {
  EXPECT_FALSE(ColumnsGiveTheSameBits({1, 8}));
}

}  // namespace
}  // namespace ScrollingCapture
