#include <gtest/gtest.h>
#include <testkit/MatrixTesting.h>

#include <VelScrollingCapture/detection/phase/internal/SpectrumColumns.h>
#include <VelScrollingCapture/detection/phase/internal/SurfaceRows.h>
#include <VelScrollingCapture/detection/phase/internal/Transforms.h>

namespace ScrollingCapture {
namespace {

cv::Mat Grey(std::uint64_t seed) {
  cv::Mat grey(50, 40, CV_8UC1);
  cv::RNG(seed).fill(grey, cv::RNG::UNIFORM, 0, 256);
  return grey;
}

class SurfaceRowsTest : public testing::Test {
 protected:
  const cv::Size dftSize{80, 100};
  const cv::Mat surface = SurfaceOfFullSpectra(Grey(1), Grey(2), Both);
  const cv::Mat correlated = CorrelateImages(Grey(1), Grey(2), dftSize);
  SurfaceRows rows{correlated, dftSize};
};

TEST_F(SurfaceRowsTest, AreTheRowsOfTheWholeSurfaceInAnyOrder) {
  std::vector<SurfaceRows::Block> blocks = rows.Blocks();
  ASSERT_GT(blocks.size(), 2U);
  for (auto block = blocks.rbegin(); block != blocks.rend(); ++block) {
    EXPECT_TRUE(Testing::SameBits(rows.Invert(block->rows), surface.rowRange(block->rows)))
        << "from row " << block->rows.start;
  }
}

TEST_F(SurfaceRowsTest, CoverTheSurfaceOnceWithinTheirBounds) {
  int next = 0;
  for (const SurfaceRows::Block& block : rows.Blocks()) {
    EXPECT_EQ(block.rows.start, next);
    next = block.rows.end;
    double highest = 0;
    cv::minMaxIdx(surface.rowRange(block.rows), nullptr, &highest);
    EXPECT_LE(highest, block.bound);
    EXPECT_LT(block.bound, 100 * highest) << "a bound that tells something";
  }
  EXPECT_EQ(next, surface.rows);
}

}  // namespace
}  // namespace ScrollingCapture
