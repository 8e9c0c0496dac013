#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <testkit/pages/Scenes.h>

#include <VelScrollingCapture/matching/internal/TolerantSearch.h>

namespace ScrollingCapture {
namespace {

using namespace Testing;

std::optional<FoundMotion> Search(const cv::Mat& page, int rows) {
  const cv::Size size(640, 480);
  cv::Mat earlier;
  cv::Mat later;
  cv::cvtColor(WithNoise(Window(page, size, {0, 0}), 1), earlier, cv::COLOR_RGBA2GRAY);
  cv::cvtColor(WithNoise(Window(page, size, {0, rows}), 2), later, cv::COLOR_RGBA2GRAY);
  TolerantSearch search(earlier, later, Both, [](const cv::Point& /*motion*/) { return false; });
  return search.Run({});
}

TEST(TolerantSearch, FindsTheMotionOfNoisyText) {
  const std::optional<FoundMotion> found = Search(DrawArticle({640, 1200}, 1), 211);
  ASSERT_TRUE(found);
  EXPECT_EQ(found->motion, cv::Point(0, -211));
  EXPECT_TRUE(found->rivals.empty());
}

TEST(TolerantSearch, NamesTheRivalsAmongEqualRows) {
  const std::optional<FoundMotion> found = Search(DrawEqualRows({640, 1200}, 40), 70);
  ASSERT_TRUE(found);
  EXPECT_FALSE(found->rivals.empty());
  EXPECT_EQ((found->motion.y + 70) % 40, 0);
}

TEST(TolerantSearch, FindsNothingBetweenUnrelatedCaptures) {
  EXPECT_FALSE(Search(DrawArticle({640, 3000}, 1), 2000));
}

}  // namespace
}  // namespace ScrollingCapture
