#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <testkit/MatrixTesting.h>
#include <testkit/RecordingListener.h>
#include <testkit/StreamCapture.h>

#include <VelScrollingCapture/matching/AnchorTranslationDetector.h>
#include <VelScrollingCapture/stitching/BasicStitcher.h>

#include "Travel.h"

namespace ScrollingCapture {
namespace {

using namespace Testing;
using testing::ElementsAre;
using testing::SizeIs;

cv::Mat Page() { return DrawArticle({TravelWindow.width, 1500}, 41); }

TEST(AnchorTranslationDetector, GivesTheMotionOfAPair) {
  const std::vector<cv::Mat> captures = CapturesAt(Page(), {0, 130});
  AnchorTranslationDetector detector(Both, false, 1);
  EXPECT_EQ(detector.DetectTranslation(captures[0], captures[1]), Translation(-130, 0));
}

TEST(AnchorTranslationDetector, OffersTheMotionAgainWhereThereIsNoDoubt) {
  const std::vector<cv::Mat> captures = CapturesAt(Page(), {0, 130});
  AnchorTranslationDetector detector(Both, false, 1);
  Translation alternative;
  detector.DetectTranslationWithAlternative(captures[0], captures[1], alternative);
  EXPECT_EQ(alternative, Translation(-130, 0));
}

TEST(AnchorTranslationDetector, OffersTheNextMotionOfADoubtfulJoin) {
  const std::vector<cv::Mat> captures =
      CapturesAt(DrawEqualRows({TravelWindow.width, 1000}, 28), {3, 43});
  AnchorTranslationDetector detector(Both, false, 1);
  Translation alternative;
  EXPECT_EQ(detector.DetectTranslationWithAlternative(captures[0], captures[1], alternative),
            Translation(-12, 0));
  EXPECT_EQ(alternative, Translation(16, 0));
}

TEST(AnchorTranslationDetector, GivesTheMotionsOfASequenceAndTheirJoins) {
  const auto provider = ProviderOf(CapturesAt(Page(), {0, 130, 900, 1000}));
  AnchorTranslationDetector detector(Vertical, false, 2);
  EXPECT_THAT(detector.Captures(), SizeIs(0));
  EXPECT_THAT(detector.DetectTranslation(*provider, nullptr, 0, 100),
              ElementsAre(Translation(-130, 0), Translation(), Translation(-100, 0)));
  ASSERT_THAT(detector.Captures(), SizeIs(4));
  EXPECT_EQ(detector.Captures()[1].join.verdict, Verdict::Proven);
  EXPECT_EQ(detector.Captures()[2].join.verdict, Verdict::None);
  EXPECT_EQ(detector.Captures()[3].part, 2);
}

TEST(AnchorTranslationDetector, ForgetsTheJoinsOfADetectionThatIsCancelled) {
  const auto provider = ProviderOf(CapturesAt(Page(), {0, 130, 260}));
  AnchorTranslationDetector detector(Both, false, 1);
  detector.DetectTranslation(*provider, nullptr, 0, 100);
  RecordingListener listener(0);
  EXPECT_TRUE(detector.DetectTranslation(*provider, &listener, 0, 100).empty());
  EXPECT_THAT(detector.Captures(), SizeIs(0));
  EXPECT_EQ(listener.calls.back(), "error 4 false");
}

TEST(AnchorTranslationDetector, RefusesFewerThanTwoCapturesWithAMessage) {
  const auto provider = ProviderOf(CapturesAt(Page(), {0}));
  AnchorTranslationDetector detector(Both, false, 1);
  const StreamCapture errors(std::cerr);
  EXPECT_TRUE(detector.DetectTranslation(*provider, nullptr, 0, 100).empty());
  EXPECT_EQ(errors.Text(), "Error: Not enough images in the IImageProvider.\n");
}

TEST(AnchorTranslationDetector, MakesAStitcherLayTheWholePage) {
  const cv::Mat page = Page();
  const auto provider = ProviderOf(CapturesAt(page, {0, 130, 330, 500}));
  BasicStitcher stitcher(std::make_shared<AnchorTranslationDetector>(Both, false, 1));
  cv::Mat result;
  ASSERT_TRUE(stitcher.Stitch(*provider, result, nullptr, 0, 100, false));
  EXPECT_TRUE(SameBits(result, page.rowRange(0, 500 + TravelWindow.height)));
}

}  // namespace
}  // namespace ScrollingCapture
