#include <gtest/gtest.h>

#include <VelScrollingCapture/matching/internal/Comparison.h>
#include <VelScrollingCapture/matching/internal/StandingParts.h>

namespace ScrollingCapture {
namespace {

const cv::Size Capture(400, 320);
const cv::Point Motion(0, -80);

/// Anchors at some places of the later capture, all of which moved so.
std::vector<Match> Moved(const cv::Point& motion, const cv::Rect& places) {
  std::vector<Match> matches;
  for (int y = places.y; y < places.br().y; y += 12) {
    for (int x = places.x; x < places.br().x; x += 12) {
      matches.push_back({{x, y}, motion, 0});
    }
  }
  return matches;
}

std::vector<Match> Both(std::vector<Match> one, const std::vector<Match>& other) {
  one.insert(one.end(), other.begin(), other.end());
  return one;
}

bool IsMarked(const cv::Mat& cells, const cv::Point& pixel) {
  return cells.at<unsigned char>(pixel / CellSide) != 0;
}

TEST(StandingParts, ReachFromBarsToTheEdge) {
  const StandingParts parts = FindStandingParts(
      Both(Moved({0, 0}, {40, 16, 60, 20}), Moved(Motion, {0, 100, 380, 100})), Motion, Capture);
  for (const cv::Mat& cells : {parts.earlier, parts.later}) {
    EXPECT_TRUE(IsMarked(cells, {390, 2}));
    EXPECT_TRUE(IsMarked(cells, {390, 30}));
    EXPECT_FALSE(IsMarked(cells, {200, 70}));
  }
  EXPECT_GT(parts.witnesses, 5);
}

TEST(StandingParts, ReachBetweenTheLettersOfAPanel) {
  const std::vector<Match> panel =
      Both(Moved({0, 0}, {4, 60, 60, 20}), Moved({0, 0}, {4, 200, 60, 20}));
  const StandingParts parts =
      FindStandingParts(Both(panel, Moved(Motion, {150, 0, 230, 220})), Motion, Capture);
  EXPECT_TRUE(IsMarked(parts.later, {20, 140}));
  EXPECT_FALSE(IsMarked(parts.later, {20, 300}));
}

TEST(StandingParts, AreNoPanelsBelowTheLettersOfABar) {
  // The patches of the bar's last letters reach into rows where content moves.
  const std::vector<Match> bar =
      Both(Moved({0, 0}, {4, 4, 380, 20}), Moved({0, 0}, {4, 32, 60, 5}));
  const StandingParts parts =
      FindStandingParts(Both(bar, Moved(Motion, {180, 40, 60, 180})), Motion, Capture);
  EXPECT_TRUE(IsMarked(parts.later, {20, 10}));
  EXPECT_FALSE(IsMarked(parts.later, {20, 200}));
}

TEST(StandingParts, FillTheBoxOfAFloatingPart) {
  // Letters along two sides of the box, and content to its left and below it.
  const std::vector<Match> button =
      Both(Moved({0, 0}, {200, 160, 5, 50}), Moved({0, 0}, {200, 160, 60, 5}));
  const std::vector<Match> content =
      Both(Moved(Motion, {0, 0, 150, 220}), Moved(Motion, {300, 0, 80, 220}));
  const StandingParts parts = FindStandingParts(Both(button, content), Motion, Capture);
  EXPECT_TRUE(IsMarked(parts.later, {250, 200}));
  EXPECT_FALSE(IsMarked(parts.later, {250, 100}));
  EXPECT_FALSE(IsMarked(parts.later, {120, 180}));
}

TEST(StandingParts, MoveAlongOneAxisWhereContentMovesAlongBoth) {
  const cv::Point motion(-40, -80);
  const StandingParts parts = FindStandingParts(
      Both(Moved({-40, 0}, {60, 4, 250, 5}), Moved(motion, {60, 40, 250, 160})), motion, Capture);
  EXPECT_TRUE(IsMarked(parts.later, {200, 10}));
  EXPECT_FALSE(IsMarked(parts.later, {200, 100}));
}

TEST(StandingParts, NeedMoreThanAFewAnchors) {
  const StandingParts parts = FindStandingParts(Moved({0, 0}, {40, 16, 60, 5}), Motion, Capture);
  EXPECT_EQ(cv::countNonZero(parts.later), 0);
}

TEST(StandingParts, AreNoneWhereNothingMoves) {
  const StandingParts parts = FindStandingParts(Moved({0, 0}, {0, 0, 380, 300}), {0, 0}, Capture);
  EXPECT_EQ(cv::countNonZero(parts.later), 0);
}

}  // namespace
}  // namespace ScrollingCapture
