#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <testkit/pages/Scenes.h>

#include <VelScrollingCapture/matching/internal/Votes.h>

namespace ScrollingCapture {
namespace {

CaptureAnchors With(std::vector<Anchor> anchors) {
  return {{100, 100}, CV_8UC4, std::move(anchors), true};
}

std::uint32_t At(int row, int column) { return static_cast<std::uint32_t>(row * 100 + column); }

TEST(Votes, ComeFromAnchorsThatAreUniqueInBothCaptures) {
  const CaptureAnchors earlier =
      With({{1, At(50, 10)}, {2, At(5, 5)}, {2, At(9, 9)}, {4, At(60, 0)}});
  const CaptureAnchors later =
      With({{1, At(20, 12)}, {2, At(7, 7)}, {3, At(0, 0)}, {4, At(60, 1)}, {4, At(61, 1)}});
  const std::vector<Match> matches = UniqueMatches(earlier, later, Both);
  ASSERT_EQ(matches.size(), 1U);
  EXPECT_EQ(matches[0].hash, 1U);
  EXPECT_EQ(matches[0].place, cv::Point(12, 20));
  EXPECT_EQ(matches[0].motion, cv::Point(2, -30));
  EXPECT_TRUE(UniqueMatches(earlier, later, Vertical).empty());
}

TEST(Votes, OfRepeatedAnchorsAreForEveryMotionBetweenThem) {
  const CaptureAnchors earlier = With({{2, At(10, 0)}, {2, At(30, 0)}});
  const CaptureAnchors later = With({{2, At(10, 0)}, {2, At(30, 0)}});
  const std::vector<CountedMotion> counted = MotionsOfRepeatedAnchors(earlier, later, Both);
  ASSERT_EQ(counted.size(), 3U);
  EXPECT_EQ(counted[0].motion, cv::Point(0, 0));
  EXPECT_EQ(counted[0].votes, 2);
  EXPECT_EQ(counted[1].motion, cv::Point(0, -20));
  EXPECT_EQ(counted[2].motion, cv::Point(0, 20));
}

TEST(Votes, AreCountedForVeryManyMotions) {
  MotionTally tally;
  for (int i = 0; i < 5000; ++i) {
    tally.Add({i, -i});
  }
  tally.Add({4000, -4000});
  const std::vector<CountedMotion> ordered = tally.Ordered();
  ASSERT_EQ(ordered.size(), 5000U);
  EXPECT_EQ(ordered[0].motion, cv::Point(4000, -4000));
  EXPECT_EQ(ordered[1].motion, cv::Point(0, 0)) << "the smallest of equal ones";
}

TEST(Votes, AreBoundedWhereAnAnchorCoversTheWholeCapture) {
  std::vector<Anchor> anchors;
  for (std::uint32_t i = 0; i < 9000; ++i) {
    anchors.push_back({5, i});
  }
  const CaptureAnchors capture = With(anchors);
  const std::size_t motions = MotionsOfRepeatedAnchors(capture, capture, Both).size();
  EXPECT_GT(motions, 0U);
  EXPECT_LE(motions, 20000U);
}

TEST(Votes, KnowWhichMotionsAreAllowed) {
  EXPECT_TRUE(IsAllowed({3, 4}, Both));
  EXPECT_FALSE(IsAllowed({3, 4}, Vertical));
  EXPECT_TRUE(IsAllowed({0, 4}, Vertical));
  EXPECT_TRUE(IsAllowed({3, 0}, Horizontal));
  EXPECT_FALSE(IsAllowed({0, 4}, Horizontal));
  EXPECT_FALSE(IsAllowed({0, 4}, static_cast<ScrollOrientation>(9)));
  EXPECT_TRUE(IsAllowed({0, 0}, static_cast<ScrollOrientation>(9)));
}

TEST(Votes, KnowTheMotionsOfPartsAndOfNeighbours) {
  EXPECT_TRUE(IsMotionOfPart({0, 0}, {5, 7}));
  EXPECT_TRUE(IsMotionOfPart({5, 0}, {5, 7}));
  EXPECT_TRUE(IsMotionOfPart({0, 7}, {5, 7}));
  EXPECT_FALSE(IsMotionOfPart({0, 5}, {5, 7}));
  EXPECT_EQ(NeighboursOf({1, 1}, Both).size(), 8U);
  EXPECT_THAT(NeighboursOf({0, 9}, Vertical),
              testing::UnorderedElementsAre(cv::Point(0, 8), cv::Point(0, 10)));
}

}  // namespace
}  // namespace ScrollingCapture
