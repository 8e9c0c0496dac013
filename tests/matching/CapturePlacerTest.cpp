#include <limits>
#include <stdexcept>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <VelScrollingCapture/matching/CapturePlacer.h>

#include "Travel.h"

namespace ScrollingCapture {
namespace {

using namespace Testing;
using testing::ElementsAre;

cv::Mat Page() { return DrawArticle({TravelWindow.width, 3000}, 21); }

/// Places captures one after the other, in the order in which they come.
class Journey {
 public:
  explicit Journey(const std::vector<cv::Mat>& captures, const MatchingSettings& settings = {})
      : provider(ProviderOf(captures)), placer(*provider, settings) {
    for (std::size_t i = 0; i < captures.size(); ++i) {
      placer.Place(i, PreparedCapture(captures[i]));
    }
  }

  std::vector<int> Parts() const {
    std::vector<int> parts;
    for (const PlacedCapture& capture : placer.All()) {
      parts.push_back(capture.part);
    }
    return parts;
  }

  std::vector<int> Rows() const {
    std::vector<int> rows;
    for (const PlacedCapture& capture : placer.All()) {
      EXPECT_EQ(capture.place.column, 0);
      rows.push_back(capture.place.row);
    }
    return rows;
  }

  std::vector<Verdict> Verdicts() const {
    std::vector<Verdict> verdicts;
    for (const PlacedCapture& capture : placer.All()) {
      verdicts.push_back(capture.join.verdict);
    }
    return verdicts;
  }

  std::unique_ptr<BasicImageProvider> provider;
  CapturePlacer placer;
};

TEST(CapturePlacer, FollowsAWindowDownAndUpAndThroughAPause) {
  const Journey journey(CapturesAt(Page(), {500, 620, 620, 810, 700, 930}));
  EXPECT_THAT(journey.Parts(), ElementsAre(1, 1, 1, 1, 1, 1));
  EXPECT_THAT(journey.Rows(), ElementsAre(0, 120, 120, 310, 200, 430));
  EXPECT_EQ(journey.placer.At(4).join.motion, Translation(110, 0));
  EXPECT_EQ(journey.placer.At(4).joinedTo, 3U);
  EXPECT_EQ(journey.placer.At(0).join.verdict, Verdict::None);
  EXPECT_FALSE(journey.placer.At(0).joinedTo);
}

TEST(CapturePlacer, BeginsAPartWhereTheWindowWentTooFast) {
  const Journey journey(CapturesAt(Page(), {0, 150, 1500, 1600}));
  EXPECT_THAT(journey.Parts(), ElementsAre(1, 1, 2, 2));
  EXPECT_THAT(journey.Rows(), ElementsAre(0, 150, 0, 100));
  EXPECT_EQ(journey.placer.At(2).join.verdict, Verdict::None);
  EXPECT_EQ(journey.placer.At(2).join.motion, Translation());
}

TEST(CapturePlacer, FindsTheWayBackToWhatWasSeenBefore) {
  const Journey journey(CapturesAt(Page(), {0, 150, 1500, 220}));
  EXPECT_THAT(journey.Parts(), ElementsAre(1, 1, 2, 1));
  EXPECT_EQ(journey.placer.At(3).place, (Place{220, 0}));
  EXPECT_EQ(journey.placer.At(3).joinedTo, 1U);
  EXPECT_EQ(journey.placer.At(3).join.verdict, Verdict::Proven);
  EXPECT_EQ(journey.placer.At(3).join.motion, Translation()) << "unknown from another part";
}

TEST(CapturePlacer, MakesPartsOneThatALaterCaptureJoins) {
  const Journey journey(CapturesAt(Page(), {0, 150, 600, 380, 700}));
  EXPECT_THAT(journey.Parts(), ElementsAre(1, 1, 1, 1, 1));
  EXPECT_THAT(journey.Rows(), ElementsAre(0, 150, 600, 380, 700));
  EXPECT_EQ(journey.placer.At(2).join.motion, Translation(-450, 0)) << "known by now";
}

TEST(CapturePlacer, NumbersPartsInTheirOrder) {
  const Journey journey(CapturesAt(Page(), {0, 900, 1800, 2600, 2000}));
  EXPECT_THAT(journey.Parts(), ElementsAre(1, 2, 3, 4, 3));
}

TEST(CapturePlacer, TakesADoubtfulStepThatRepeatsTheOneBefore) {
  const cv::Mat page = DrawEqualRows({TravelWindow.width, 1500}, 28);
  const std::vector<cv::Mat> captures = CapturesAt(page, {3, 43, 83});
  const auto provider = ProviderOf(captures);
  CapturePlacer placer(*provider, {});
  placer.Place(0, PreparedCapture(captures[0]));
  placer.PlaceAt(1, PreparedCapture(captures[1]), {-40, 0});
  const PlacedCapture placed = placer.Place(2, PreparedCapture(captures[2]));
  EXPECT_EQ(placed.join.verdict, Verdict::Doubtful);
  EXPECT_EQ(placed.join.motion, Translation(-40, 0));
  EXPECT_EQ(placed.place, (Place{80, 0}));
}

TEST(CapturePlacer, TakesADoubtfulStepAsBeforeAPauseWhereStepsAreEven) {
  const cv::Mat page = DrawEqualRows({TravelWindow.width, 1500}, 28);
  const std::vector<cv::Mat> captures = CapturesAt(page, {3, 43, 43, 83});
  const auto provider = ProviderOf(captures);
  for (const bool even : {false, true}) {
    CapturePlacer placer(*provider, {Both, even});
    placer.Place(0, PreparedCapture(captures[0]));
    placer.PlaceAt(1, PreparedCapture(captures[1]), {-40, 0});
    placer.PlaceAt(2, PreparedCapture(captures[2]), {0, 0});
    const Join join = placer.Place(3, PreparedCapture(captures[3])).join;
    EXPECT_EQ(join.verdict, Verdict::Doubtful);
    EXPECT_EQ(join.motion == Translation(-40, 0), even) << join.motion;
    EXPECT_EQ(join.alternatives.front() == Translation(-12, 0), even) << "the smallest one first";
  }
}

TEST(CapturePlacer, TakesAProofBackWhenItsContentIsSeenElsewhere) {
  cv::Mat page = DrawArticle({TravelWindow.width, 3000}, 22);
  // What the first two captures share occurs once more, and so does nothing else of them.
  page.rowRange(200, 320).copyTo(page.rowRange(900, 1020));
  const std::vector<cv::Mat> captures = CapturesAt(page, {0, 200, 400, 600, 800});
  const auto provider = ProviderOf(captures);
  CapturePlacer placer(*provider, {});
  for (std::size_t i = 0; i < 2; ++i) {
    placer.Place(i, PreparedCapture(captures[i]));
  }
  EXPECT_EQ(placer.At(1).join.verdict, Verdict::Proven);
  for (std::size_t i = 2; i < captures.size(); ++i) {
    placer.Place(i, PreparedCapture(captures[i]));
  }
  EXPECT_EQ(placer.At(4).place, (Place{800, 0}));
  EXPECT_EQ(placer.At(1).join.verdict, Verdict::Likely);
  EXPECT_EQ(placer.At(1).join.motion, Translation(-200, 0));
}

TEST(CapturePlacer, ProvesAPrescribedMotion) {
  const std::vector<cv::Mat> captures = CapturesAt(Page(), {0, 150, 300});
  const auto provider = ProviderOf(captures);
  CapturePlacer placer(*provider, {});
  placer.PlaceAt(0, PreparedCapture(captures[0]), {5, 5});
  EXPECT_EQ(placer.At(0).place, Place());
  const PlacedCapture right = placer.PlaceAt(1, PreparedCapture(captures[1]), {-150, 0});
  EXPECT_EQ(right.join.verdict, Verdict::Proven);
  EXPECT_EQ(right.place, (Place{150, 0}));
  const PlacedCapture wrong = placer.PlaceAt(2, PreparedCapture(captures[2]), {-100, 7});
  EXPECT_EQ(wrong.join.verdict, Verdict::None);
  EXPECT_EQ(wrong.join.motion, Translation(-100, 7));
  EXPECT_EQ(wrong.place, (Place{250, -7}));
  EXPECT_EQ(wrong.part, 1);
  EXPECT_EQ(wrong.join.compared, (TravelWindow.width - 7) * (TravelWindow.height - 100));
  EXPECT_LT(wrong.join.equal, wrong.join.compared);
}

TEST(CapturePlacer, ProvesAPrescribedMotionOnWhateverLiesThere) {
  const std::vector<cv::Mat> captures = CapturesAt(Page(), {0, 150, 300, 450, 20});
  const auto provider = ProviderOf(captures);
  CapturePlacer placer(*provider, {});
  for (std::size_t i = 0; i < 4; ++i) {
    placer.Place(i, PreparedCapture(captures[i]));
  }
  const PlacedCapture placed = placer.PlaceAt(4, PreparedCapture(captures[4]), {430, 0});
  EXPECT_EQ(placed.join.verdict, Verdict::Proven);
  EXPECT_EQ(placed.join.motion, Translation(430, 0));
  EXPECT_EQ(placed.joinedTo, 0U);
}

TEST(CapturePlacer, JoinsPartsByAPrescribedMotionUnlessItIsContradicted) {
  const std::vector<cv::Mat> captures = CapturesAt(Page(), {0, 600, 380, 190});
  const auto provider = ProviderOf(captures);
  for (const int rows : {190, 180}) {
    CapturePlacer placer(*provider, {});
    placer.Place(0, PreparedCapture(captures[0]));
    placer.Place(1, PreparedCapture(captures[1]));
    ASSERT_EQ(placer.At(1).part, 2);
    placer.Place(2, PreparedCapture(captures[2]));
    const PlacedCapture placed = placer.PlaceAt(3, PreparedCapture(captures[3]), {rows, 0});
    EXPECT_EQ(placed.part, rows == 190 ? 1 : 2);
  }
}

TEST(CapturePlacer, ListsTheOtherMotionWhenOneOfSeveralIsPrescribed) {
  const cv::Mat page = DrawEqualRows({TravelWindow.width, 1500}, 28);
  const std::vector<cv::Mat> captures = CapturesAt(page, {3, 43});
  const auto provider = ProviderOf(captures);
  CapturePlacer placer(*provider, {});
  placer.Place(0, PreparedCapture(captures[0]));
  const Join join = placer.PlaceAt(1, PreparedCapture(captures[1]), {-40, 0}).join;
  EXPECT_EQ(join.verdict, Verdict::Doubtful);
  EXPECT_EQ(join.motion, Translation(-40, 0));
  EXPECT_THAT(join.alternatives, testing::Contains(Translation(-12, 0)));
  EXPECT_THAT(join.alternatives, testing::Not(testing::Contains(Translation(-40, 0))));
}

TEST(CapturePlacer, RefusesAbsurdPrescriptionsAndTakesFarOnes) {
  const std::vector<cv::Mat> captures = CapturesAt(Page(), {0, 150});
  const auto provider = ProviderOf(captures);
  CapturePlacer placer(*provider, {});
  placer.Place(0, PreparedCapture(captures[0]));
  const PreparedCapture second = PreparedCapture(captures[1]);
  EXPECT_THROW(placer.PlaceAt(1, second, {0, std::numeric_limits<int>::min()}),
               std::invalid_argument);
  EXPECT_THROW(placer.PlaceAt(1, second, {300'000, 0}), std::invalid_argument);
  const PlacedCapture placed = placer.PlaceAt(1, second, {-200'000, 1000});
  EXPECT_EQ(placed.join.verdict, Verdict::None);
  EXPECT_EQ(placed.join.compared, 0);
}

/// Counts how often captures are read.
class CountingProvider : public BasicImageProvider {
 public:
  std::shared_ptr<cv::Mat> GetImageAt(size_t index) override {
    ++reads;
    return BasicImageProvider::GetImageAt(index);
  }

  int reads = 0;
};

TEST(CapturePlacer, LooksAtFewCapturesOfAnotherPartThatIsMuchAlike) {
  // Pictures that are shown above and below, in another order: each one speaks for a place.
  cv::Mat page = DrawArticle({TravelWindow.width, 3000}, 5);
  for (int i = 0; i < 14; ++i) {
    const cv::Mat picture = DrawPhoto({100, 40}, static_cast<std::uint64_t>(i) + 6);
    Lay(picture, page, {20 * i, 20 + 45 * i});
    Lay(picture, page, {20 * i, 2020 + 45 * (5 * i % 14)});
  }
  const std::vector<cv::Mat> captures =
      CapturesAt(page, {0, 100, 200, 300, 2000, 2100, 2200, 2300});
  CountingProvider provider;
  CapturePlacer placer(provider, {});
  std::size_t index = 0;
  for (cv::Mat capture : captures) {
    provider.Add(capture);
    placer.Place(index++, PreparedCapture(capture));
  }
  EXPECT_EQ(placer.At(index - 1).part, 2);
  EXPECT_LE(provider.reads, 80);
}

TEST(CapturePlacer, RefusesCapturesOutOfOrderAndOfAnotherFormat) {
  const std::vector<cv::Mat> captures = CapturesAt(Page(), {0, 150});
  const auto provider = ProviderOf(captures);
  CapturePlacer placer(*provider, {});
  const PreparedCapture first = PreparedCapture(captures[0]);
  EXPECT_THROW(placer.Place(1, first), std::invalid_argument);
  placer.Place(0, first);
  EXPECT_THROW(placer.Place(0, first), std::invalid_argument);
  const PreparedCapture narrow = PreparedCapture(captures[1].colRange(0, 400));
  EXPECT_THROW(placer.Place(1, narrow), std::invalid_argument);
  EXPECT_EQ(placer.Count(), 1);
  EXPECT_EQ(placer.Place(1, PreparedCapture(captures[1])).place, (Place{150, 0}));
}

TEST(CapturePlacer, RemembersNoMoreForCapturesThatShowNothingNew) {
  const cv::Mat page = DrawPhoto({TravelWindow.width, 700}, 3);
  const std::vector<cv::Mat> captures = CapturesAt(page, {0, 150, 300, 380});
  const auto provider = ProviderOf(captures);
  CapturePlacer placer(*provider, {});
  std::size_t index = 0;
  for (const cv::Mat& capture : captures) {
    placer.Place(index++, PreparedCapture(capture));
  }
  const std::size_t bytes = placer.Bytes();
  EXPECT_LE(bytes, page.total() + 200'000);
  // A film in the middle of the window gives new anchors for ever.
  for (std::uint64_t film = 0; film < 40; ++film) {
    cv::Mat capture = captures.back().clone();
    Lay(DrawPhoto({200, 100}, 100 + film), capture, {140, 100});
    provider->Add(capture);
    placer.Place(index++, PreparedCapture(capture));
  }
  EXPECT_EQ(placer.At(index - 1).place, (Place{380, 0}));
  EXPECT_LE(placer.Bytes(), page.total() + 200'000);
}

}  // namespace
}  // namespace ScrollingCapture
