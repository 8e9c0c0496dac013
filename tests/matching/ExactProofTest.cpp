#include <gtest/gtest.h>
#include <testkit/pages/Scenes.h>

#include <VelScrollingCapture/matching/internal/ExactProof.h>
#include <VelScrollingCapture/matching/internal/PixelKeys.h>

namespace ScrollingCapture {
namespace {

using namespace Testing;

/// Two captures with all that a proof needs.
struct Shown {
  Shown(const cv::Mat& first, const cv::Mat& second)
      : earlier(PixelKeysOf(first, false)),
        later(PixelKeysOf(second, false)),
        matches(UniqueMatches(FindAnchors(first), FindAnchors(second), Both)) {}

  cv::Mat earlier;
  cv::Mat later;
  std::vector<Match> matches;
  ExactProof proof{earlier, later, matches};
};

const cv::Size Size(480, 320);

Shown Scrolled(const cv::Mat& page, int rows) {
  return {Window(page, Size, {0, 0}), Window(page, Size, {0, rows})};
}

TEST(ExactProof, FindsNothingAgainstTheRightMotion) {
  const Shown shown = Scrolled(DrawArticle({480, 800}, 1), 100);
  const Finding finding = shown.proof.Examine({0, -100});
  EXPECT_TRUE(finding.IsPlausible(false));
  EXPECT_TRUE(finding.IsClean());
  EXPECT_EQ(finding.contradicting, 0);
  EXPECT_EQ(finding.comparison.equal, finding.comparison.Compared());
}

TEST(ExactProof, RefusesOtherMotions) {
  const Shown shown = Scrolled(DrawArticle({480, 800}, 1), 100);
  for (const cv::Point& motion : {cv::Point(0, 0), cv::Point(0, -99), cv::Point(0, -122)}) {
    EXPECT_FALSE(shown.proof.Examine(motion).IsPlausible(false));
    EXPECT_FALSE(shown.proof.Examine(motion).IsPossible());
    EXPECT_TRUE(shown.proof.Beats({0, -100}, motion));
    EXPECT_FALSE(shown.proof.Beats(motion, {0, -100}));
  }
}

TEST(ExactProof, CallsEqualRowsPossibleUnderSeveralMotions) {
  const Shown shown = Scrolled(DrawEqualRows({480, 900}, 30), 50);
  for (const int rows : {-50, -20, 10, 40}) {
    EXPECT_TRUE(shown.proof.Examine({0, rows}).IsPossible());
  }
  EXPECT_FALSE(shown.proof.Examine({0, -49}).IsPossible());
}

TEST(ExactProof, SeesWhetherAnythingMoved) {
  const cv::Mat page = DrawArticle({480, 2000}, 2);
  cv::Mat film = Window(page, Size, {0, 0});
  Lay(DrawPhoto({120, 100}, 3), film, {180, 110});
  EXPECT_TRUE(Shown(Window(page, Size, {0, 0}), film).proof.StandsStill());
  EXPECT_FALSE(Scrolled(page, 1200).proof.StandsStill());
}

}  // namespace
}  // namespace ScrollingCapture
