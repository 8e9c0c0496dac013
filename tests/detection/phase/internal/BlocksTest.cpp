#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <VelScrollingCapture/detection/phase/internal/Blocks.h>

namespace ScrollingCapture {
namespace {

std::vector<cv::Range> BlocksOf(int count, int step) {
  std::vector<cv::Range> blocks;
  ForEachBlock(count, step, [&](const cv::Range& block) { blocks.push_back(block); });
  return blocks;
}

TEST(Blocks, CoverEverythingOnceWithTheRestAtTheEnd) {
  using testing::ElementsAre;
  EXPECT_THAT(BlocksOf(7, 3), ElementsAre(cv::Range(0, 3), cv::Range(3, 6), cv::Range(6, 7)));
  EXPECT_THAT(BlocksOf(6, 3), ElementsAre(cv::Range(0, 3), cv::Range(3, 6)));
  EXPECT_THAT(BlocksOf(2, 3), ElementsAre(cv::Range(0, 2)));
  EXPECT_THAT(BlocksOf(0, 3), ElementsAre());
}

}  // namespace
}  // namespace ScrollingCapture
