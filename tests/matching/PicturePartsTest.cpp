#include <gtest/gtest.h>

#include <VelScrollingCapture/matching/internal/PictureParts.h>

namespace ScrollingCapture {
namespace {

TEST(PictureParts, KeepTheirOwnPlacesUntilTheyAreJoined) {
  PictureParts parts;
  const int first = parts.Add();
  const int second = parts.Add();
  EXPECT_TRUE(parts.AreSeveral());
  EXPECT_EQ(parts.Resolve({second, {3, 4}}).part, second);
  parts.Join({second, {3, 4}}, {first, {10, 20}});
  EXPECT_FALSE(parts.AreSeveral());
  const PartPlace resolved = parts.Resolve({second, {5, 4}});
  EXPECT_EQ(resolved.part, first);
  EXPECT_EQ(resolved.place, cv::Point(12, 20));
}

TEST(PictureParts, StandForAllThatWereJoinedInTurn) {
  PictureParts parts;
  const int one = parts.Add();
  const int two = parts.Add();
  const int three = parts.Add();
  parts.Join({three, {0, 0}}, {two, {0, 100}});
  parts.Join({one, {0, 7}}, {three, {0, 0}});
  parts.Join({one, {0, 0}}, {three, {0, 999}});
  EXPECT_EQ(parts.Resolve({three, {1, 1}}).part, one);
  EXPECT_EQ(parts.Resolve({three, {1, 1}}).place, cv::Point(1, 8)) << "the first word counts";
  EXPECT_EQ(parts.Resolve({two, {0, 100}}).place, cv::Point(0, 7));
}

}  // namespace
}  // namespace ScrollingCapture
