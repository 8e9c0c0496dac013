#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <testkit/pages/Scenes.h>

#include <VelScrollingCapture/matching/internal/Periods.h>

namespace ScrollingCapture {
namespace {

using namespace Testing;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(Periods, AreThoseOfRows) {
  EXPECT_THAT(PeriodsOf(DrawEqualRows({500, 400}, 27)), testing::Contains(cv::Point(0, 27)));
  EXPECT_THAT(PeriodsOf(DrawLog({500, 400}, 1)), testing::Contains(cv::Point(0, 24)));
}

TEST(Periods, AreThoseOfColumnsAsWell) {
  const cv::Mat columns = DrawEqualRows({400, 500}, 31).t();
  EXPECT_THAT(PeriodsOf(columns), testing::Contains(cv::Point(31, 0)));
}

TEST(Periods, OutlastNoise) {
  EXPECT_THAT(PeriodsOf(WithNoise(DrawEqualRows({500, 400}, 27), 1)),
              testing::Contains(cv::Point(0, 27)));
}

TEST(Periods, AreNoneWhereContentVaries) {
  EXPECT_THAT(PeriodsOf(DrawPhoto({500, 400}, 1)), IsEmpty());
  EXPECT_THAT(PeriodsOf(cv::Mat(100, 100, CV_8UC4, cv::Scalar::all(9))), IsEmpty());
}

TEST(Periods, AreLookedForInLossyFilesByTheirNoise) {
  const cv::Mat text = DrawArticle({500, 400}, 1);
  EXPECT_FALSE(MayBeLossy(text));
  EXPECT_TRUE(MayBeLossy(WithNoise(text, 1)));
  EXPECT_TRUE(MayBeLossy(DrawPhoto({500, 400}, 1)));
}

TEST(Periods, TakeTheSmallestCaptures) {
  for (int side = 1; side < 14; ++side) {
    EXPECT_LE(PeriodsOf(DrawPhoto({side, side}, 2)).size(), 2U);
  }
}

}  // namespace
}  // namespace ScrollingCapture
