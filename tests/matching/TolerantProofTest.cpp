#include <gtest/gtest.h>
#include <testkit/pages/Scenes.h>

#include <VelScrollingCapture/matching/internal/TolerantProof.h>

namespace ScrollingCapture {
namespace {

using namespace Testing;

const cv::Size Size(640, 480);

cv::Mat NoisyWindow(const cv::Mat& page, int row, std::uint64_t seed) {
  cv::Mat grey;
  cv::cvtColor(WithNoise(Window(page, Size, {0, row}), seed), grey, cv::COLOR_RGBA2GRAY);
  return grey;
}

class TolerantProofOfText : public testing::Test {
 protected:
  const cv::Mat page = DrawArticle({640, 900}, 1);
  const cv::Mat earlier = NoisyWindow(page, 0, 1);
  const cv::Mat later = NoisyWindow(page, 120, 2);
  const TolerantProof proof{earlier, later};
};

TEST_F(TolerantProofOfText, AcceptsTheRightMotionDespiteNoise) {
  const TolerantFinding finding = proof.Examine({0, -120});
  EXPECT_TRUE(finding.IsPlausible(false));
  EXPECT_EQ(finding.tilesAgainst, 0);
  EXPECT_EQ(finding.tilesExact, 0);
  EXPECT_TRUE(finding.IsTelling());
}

TEST_F(TolerantProofOfText, RefusesOthers) {
  EXPECT_FALSE(proof.Examine({0, 0}).IsPlausible(true));
  EXPECT_FALSE(proof.Examine({0, -98}).IsPlausible(true));
  EXPECT_FALSE(proof.Examine({0, 900}).IsPlausible(true));
}

TEST_F(TolerantProofOfText, ExplainsMostWithoutJitter) {
  const TolerantFinding right = proof.Examine({0, -120});
  const TolerantFinding next = proof.Examine({0, -121});
  EXPECT_EQ(next.tilesAgainst, 0) << "one pixel of jitter";
  EXPECT_GT(right.explained, 2 * next.explained);
}

TEST_F(TolerantProofOfText, BeatsWhatItExplainsBetter) {
  const TolerantFinding right = proof.Examine({0, -120});
  const TolerantFinding wrong = proof.Examine({0, -98});
  EXPECT_TRUE(TolerantProof::Beats(right, wrong));
  EXPECT_FALSE(TolerantProof::Beats(wrong, right));
  EXPECT_TRUE(right.Outclasses(wrong));
  EXPECT_FALSE(wrong.Outclasses(right));
}

TEST(TolerantProof, DoesNotOverruleExactMaterial) {
  cv::Mat page;
  cv::cvtColor(DrawLog({640, 1200}, 1), page, cv::COLOR_RGBA2GRAY);
  const cv::Mat earlier = Window(page, Size, {0, 0});
  const cv::Mat later = Window(page, Size, {0, 250});
  const TolerantFinding wrong = TolerantProof(earlier, later).Examine({0, -202});
  EXPECT_GT(wrong.tilesFor, wrong.tilesAgainst);
  EXPECT_FALSE(wrong.IsPlausible(false));
}

}  // namespace
}  // namespace ScrollingCapture
