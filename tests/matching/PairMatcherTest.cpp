#include <array>
#include <stdexcept>
#include <string>
#include <tuple>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <testkit/pages/Scenes.h>

#include <VelScrollingCapture/matching/PairMatcher.h>

namespace ScrollingCapture {
namespace {

using namespace Testing;

const cv::Size Size(640, 420);

Join Match(const cv::Mat& previous, const cv::Mat& current, ScrollOrientation orientation = Both) {
  return MatchPair(previous, current, {orientation, false});
}

/// The join of two windows of a page.
Join MatchWindows(const cv::Mat& page, const cv::Point& from, const cv::Point& to,
                  const cv::Size& size = Size) {
  return Match(Window(page, size, from), Window(page, size, to));
}

/// A page of short headings over blocks of one colour and some lines of text, far apart.
cv::Mat DrawSparsePage(const cv::Size& size) {
  cv::Mat page(size, CV_8UC4, cv::Scalar::all(255));
  cv::RNG random(3);
  for (int row = 24; row + 120 < size.height; row += 180) {
    DrawText(page, "Section " + std::to_string(row / 180), {24, row}, {0, 0, 0, 255}, 0.55);
    const cv::Rect block(24, row + 16, random.uniform(100, 250), 26);
    page(block).setTo(cv::Scalar(random.uniform(0, 255), random.uniform(0, 255), 80, 255));
    for (const int line : {64, 84}) {
      DrawText(page, "row " + std::to_string(random.uniform(1000, 9999)) + " of the ledger",
               {2, row + line}, {0, 0, 0, 255}, 0.5);
    }
  }
  return page;
}

struct Step {
  const char* name;
  cv::Point from;
  cv::Point to;
};
void PrintTo(const Step& step, std::ostream* stream) { *stream << step.name; }

class PairMatcherSteps : public testing::TestWithParam<Step> {};

TEST_P(PairMatcherSteps, AreProvenOnText) {
  const Join join = MatchWindows(DrawArticle({900, 1200}, 3), GetParam().from, GetParam().to);
  const cv::Point motion = GetParam().from - GetParam().to;
  EXPECT_EQ(join.motion, Translation(motion.y, motion.x));
  EXPECT_EQ(join.verdict, Verdict::Proven);
  EXPECT_EQ(join.compared,
            std::int64_t{Size.width - std::abs(motion.x)} * (Size.height - std::abs(motion.y)));
  EXPECT_EQ(join.equal, join.compared);
  EXPECT_TRUE(join.alternatives.empty());
}

TEST_P(PairMatcherSteps, AreProvenOnAPhoto) {
  const Join join = MatchWindows(DrawPhoto({900, 1200}, 5), GetParam().from, GetParam().to);
  const cv::Point motion = GetParam().from - GetParam().to;
  EXPECT_EQ(join.motion, Translation(motion.y, motion.x));
  EXPECT_EQ(join.verdict, Verdict::Proven);
}

INSTANTIATE_TEST_SUITE_P(
    All, PairMatcherSteps,
    testing::Values(Step{"Down", {40, 100}, {40, 257}}, Step{"Up", {40, 257}, {40, 100}},
                    Step{"Right", {10, 100}, {171, 100}}, Step{"Left", {171, 100}, {10, 100}},
                    Step{"Diagonally", {10, 100}, {103, 31}}, Step{"Nowhere", {40, 100}, {40, 100}},
                    Step{"ByOnePixel", {40, 100}, {40, 101}},
                    Step{"AlmostAWindow", {40, 100}, {40, 490}}),
    [](const auto& test) { return test.param.name; });

class PairMatcherChannels : public testing::TestWithParam<int> {};

TEST_P(PairMatcherChannels, AreJoined) {
  cv::Mat page = DrawArticle({700, 900}, 4);
  if (GetParam() != 4) {
    cv::cvtColor(page, page, GetParam() == 3 ? cv::COLOR_RGBA2RGB : cv::COLOR_RGBA2GRAY);
  }
  const Join join = MatchWindows(page, {0, 0}, {0, 133});
  EXPECT_EQ(join.motion, Translation(-133, 0));
  EXPECT_EQ(join.verdict, Verdict::Proven);
}

INSTANTIATE_TEST_SUITE_P(All, PairMatcherChannels, testing::Values(1, 3, 4),
                         testing::PrintToStringParamName());

TEST(PairMatcher, JoinsVerySmallWindows) {
  const Join join = MatchWindows(DrawArticle({200, 300}, 8), {30, 20}, {30, 51}, {120, 80});
  EXPECT_EQ(join.motion, Translation(-31, 0));
  EXPECT_LE(join.verdict, Verdict::Likely);
}

TEST(PairMatcher, DoesNotCareAboutTheColourOfTransparentPixels) {
  cv::Mat page = DrawArticle({700, 900}, 4);
  page(cv::Rect(100, 0, 200, 900)).setTo(cv::Scalar(0, 0, 0, 0));
  cv::Mat first = Window(page, Size, {0, 0});
  const cv::Mat second = Window(page, Size, {0, 90});
  cv::RNG random(1);
  for (int i = 0; i < 3000; ++i) {
    first.at<cv::Vec4b>(random.uniform(0, Size.height), random.uniform(100, 300))[0] = 7;
  }
  const Join join = Match(first, second);
  EXPECT_EQ(join.verdict, Verdict::Proven);
  EXPECT_EQ(join.equal, join.compared);
}

TEST(PairMatcher, ProvesContentBetweenFixedBars) {
  const cv::Mat page = DrawArticle({640, 1200}, 11);
  const cv::Mat header = DrawBar({640, 48}, 1);
  const cv::Mat footer = DrawBar({640, 30}, 2);
  cv::Mat captures[] = {Window(page, Size, {0, 0}), Window(page, Size, {0, 190})};
  for (cv::Mat& capture : captures) {
    Lay(header, capture, {0, 0});
    Lay(footer, capture, {0, Size.height - footer.rows});
  }
  const Join join = Match(captures[0], captures[1]);
  EXPECT_EQ(join.motion, Translation(-190, 0));
  EXPECT_EQ(join.verdict, Verdict::Proven);
  EXPECT_LT(join.equal, join.compared);
}

/// Where a word stands in a header of 60 rows, by its baseline.
class PairMatcherHeaderWithAWord : public testing::TestWithParam<int> {};

TEST_P(PairMatcherHeaderWithAWord, HidesNoJoin) {
  const cv::Size size(700, 500);
  const cv::Mat page = DrawSparsePage({700, 1200});
  cv::Mat header(60, 700, CV_8UC4, cv::Scalar(100, 66, 32, 255));
  DrawText(header, "Stays", {1, GetParam()}, {255, 255, 255, 255}, 0.55);
  cv::Mat captures[] = {Window(page, size, {0, 0}), Window(page, size, {0, 120})};
  for (cv::Mat& capture : captures) {
    Lay(header, capture, {0, 0});
  }
  const Join join = Match(captures[0], captures[1]);
  EXPECT_EQ(join.motion, Translation(-120, 0));
  EXPECT_EQ(join.verdict, Verdict::Proven);
}

INSTANTIATE_TEST_SUITE_P(Baselines, PairMatcherHeaderWithAWord, testing::Values(14, 34, 54));

TEST(PairMatcher, ProvesContentBesideFrozenPanes) {
  const cv::Mat page = DrawArticle({1200, 1200}, 12);
  const auto capture = [&](const cv::Point& place) {
    cv::Mat shown = Window(page, Size, place);
    Lay(Window(page, {Size.width, 40}, {place.x, 0}), shown, {0, 0});
    Lay(Window(page, {60, Size.height}, {0, place.y}), shown, {0, 0});
    return shown;
  };
  const Join join = Match(capture({100, 100}), capture({190, 230}));
  EXPECT_EQ(join.motion, Translation(-130, -90));
  EXPECT_LE(join.verdict, Verdict::Likely);
}

TEST(PairMatcher, IsNotCertainWhereALargePartChanges) {
  const cv::Mat page = DrawArticle({640, 900}, 13);
  cv::Mat first = Window(page, Size, {0, 0});
  cv::Mat second = Window(page, Size, {0, 120});
  Lay(DrawPhoto({240, 200}, 1), first, {300, 200});
  Lay(DrawPhoto({240, 200}, 2), second, {300, 80});
  const Join join = Match(first, second);
  EXPECT_EQ(join.motion, Translation(-120, 0));
  EXPECT_EQ(join.verdict, Verdict::Likely);
}

TEST(PairMatcher, ProvesDespiteAPointer) {
  const cv::Mat page = DrawArticle({640, 900}, 14);
  cv::Mat first = Window(page, Size, {0, 0});
  cv::Mat second = Window(page, Size, {0, 150});
  cv::rectangle(first, cv::Rect(200, 200, 12, 18), {0, 0, 0, 255}, cv::FILLED);
  cv::rectangle(second, cv::Rect(260, 230, 12, 18), {0, 0, 0, 255}, cv::FILLED);
  EXPECT_EQ(Match(first, second).verdict, Verdict::Proven);
}

TEST(PairMatcher, ToleratesNoise) {
  const cv::Mat page = DrawArticle({640, 900}, 15);
  const Join join =
      Match(WithNoise(Window(page, Size, {0, 0}), 1), WithNoise(Window(page, Size, {0, 150}), 2));
  EXPECT_EQ(join.motion, Translation(-150, 0));
  EXPECT_EQ(join.verdict, Verdict::Likely);
}

enum class Header { None, OfOneColour, Textured };

using SmallWindow = std::tuple<cv::Size, Header>;

cv::Mat DrawNoise(const cv::Size& size, std::uint64_t seed) {
  cv::RNG random(seed);
  cv::Mat noise(size, CV_8UC4);
  random.fill(noise, cv::RNG::UNIFORM, 0, 256);
  cv::Mat alpha(size, CV_8UC1, cv::Scalar(255));
  cv::insertChannel(alpha, noise, 3);
  return noise;
}

void LayHeader(Header header, int rows, cv::Mat& capture) {
  if (header == Header::OfOneColour) {
    capture.rowRange(0, rows).setTo(cv::Scalar(40, 60, 90, 255));
  } else if (header == Header::Textured) {
    Lay(DrawNoise({capture.cols, rows}, 9), capture, {0, 0});
  }
}

std::string NameOf(const testing::TestParamInfo<SmallWindow>& test) {
  const auto& [size, header] = test.param;
  constexpr std::array Names = {"Bare", "UnderAPlainHeader", "UnderATexturedHeader"};
  return std::to_string(size.width) + "By" + std::to_string(size.height) +
         Names.at(static_cast<std::size_t>(header));
}

class PairMatcherSmallWindows : public testing::TestWithParam<SmallWindow> {};

TEST_P(PairMatcherSmallWindows, JoinStepsOfAQuarter) {
  const auto [size, header] = GetParam();
  const int quarter = size.height / 4;
  for (const cv::Mat& page : {DrawNoise({160, 200}, 7), DrawPhoto({160, 200}, 8)}) {
    for (const int from : {0, 3, 5}) {
      cv::Mat first = Window(page, size, {0, from});
      cv::Mat second = Window(page, size, {0, from + quarter});
      LayHeader(header, quarter, first);
      LayHeader(header, quarter, second);
      const Join join = Match(first, second);
      EXPECT_EQ(join.motion, Translation(-quarter, 0));
      EXPECT_LE(join.verdict, Verdict::Likely);
    }
  }
}

TEST_P(PairMatcherSmallWindows, AreNotJoinedToOthers) {
  const auto [size, header] = GetParam();
  cv::Mat first = Window(DrawNoise({160, 200}, 7), size, {0, 0});
  cv::Mat second = Window(DrawNoise({160, 200}, 17), size, {0, 0});
  LayHeader(header, size.height / 4, first);
  LayHeader(header, size.height / 4, second);
  EXPECT_GE(Match(first, second).verdict, Verdict::Doubtful);
}

INSTANTIATE_TEST_SUITE_P(
    All, PairMatcherSmallWindows,
    testing::Combine(testing::Values(cv::Size(48, 48), cv::Size(64, 48), cv::Size(48, 96),
                                     cv::Size(80, 64), cv::Size(96, 80), cv::Size(120, 80),
                                     cv::Size(160, 120)),
                     testing::Values(Header::None, Header::OfOneColour, Header::Textured)),
    NameOf);

TEST(PairMatcher, DoubtsBlankOverlapsAndListsTheAlternatives) {
  const cv::Mat page = DrawPhoto({640, 1200}, 19);
  page.rowRange(300, 800).setTo(cv::Scalar(255, 255, 255, 255));
  const Join join = MatchWindows(page, {0, 100}, {0, 400});
  EXPECT_EQ(join.verdict, Verdict::Doubtful);
  EXPECT_EQ(join.motion, Translation(-200, 0));
  EXPECT_EQ(join.equal, join.compared);
  EXPECT_THAT(join.alternatives, testing::Contains(Translation(-300, 0)));
  EXPECT_THAT(join.alternatives, testing::Not(testing::Contains(Translation(-200, 0))));
}

TEST(PairMatcher, TakesTheStepBeforeWhereTheOverlapIsBlank) {
  const cv::Mat page = DrawPhoto({640, 1200}, 19);
  page.rowRange(300, 800).setTo(cv::Scalar(255, 255, 255, 255));
  const Join join = MatchPair(Window(page, Size, {0, 100}), Window(page, Size, {0, 400}), {},
                              Translation(-300, 0));
  EXPECT_EQ(join.motion, Translation(-300, 0));
  EXPECT_THAT(join.alternatives, testing::Contains(Translation(-200, 0)));
}

TEST(PairMatcher, TakesRepeatedCapturesForUnmoved) {
  const cv::Mat page = DrawArticle({640, 900}, 15);
  cv::Mat second = Window(page, Size, {0, 100});
  Lay(DrawPhoto({240, 200}, 1), second, {200, 110});
  const Join join = Match(Window(page, Size, {0, 100}), second);
  EXPECT_EQ(join.motion, Translation());
  EXPECT_EQ(join.verdict, Verdict::Likely);
}

TEST(PairMatcher, ProvesThatACaptureRepeatsTheOneBeforeEvenWhereRowsAreMuchAlike) {
  for (const cv::Mat& page : {DrawLog({640, 900}, 17), DrawArticle({640, 900}, 17)}) {
    cv::Mat capture = Window(page, Size, {0, 100});
    Lay(DrawPhoto({120, 100}, 1), capture, {400, 150});
    const Join join = Match(capture, capture);
    EXPECT_EQ(join.motion, Translation());
    EXPECT_EQ(join.verdict, Verdict::Proven);
  }
}

TEST(PairMatcher, DoubtsEqualRowsAndListsTheAlternatives) {
  const cv::Mat page = DrawEqualRows({640, 1200}, 28);
  const Join join = MatchWindows(page, {0, 3}, {0, 3 + 40});
  EXPECT_EQ(join.verdict, Verdict::Doubtful);
  EXPECT_EQ(join.motion, Translation(-12, 0)) << "the smallest";
  EXPECT_THAT(join.alternatives, testing::Contains(Translation(-40, 0)));
  EXPECT_THAT(join.alternatives, testing::Not(testing::Contains(join.motion)));
}

TEST(PairMatcher, PrefersTheStepBeforeWhereThereIsDoubt) {
  const cv::Mat page = DrawEqualRows({640, 1200}, 28);
  const Join join = MatchPair(Window(page, Size, {0, 3}), Window(page, Size, {0, 43}), {Both, true},
                              Translation(-40, 0));
  EXPECT_EQ(join.verdict, Verdict::Doubtful);
  EXPECT_EQ(join.motion, Translation(-40, 0));
  EXPECT_THAT(join.alternatives, testing::Contains(Translation(-12, 0)));
}

TEST(PairMatcher, FollowsTheStepBeforeNowhereElse) {
  const cv::Mat page = DrawArticle({640, 1200}, 16);
  const Join join = MatchPair(Window(page, Size, {0, 0}), Window(page, Size, {0, 150}),
                              {Both, true}, Translation(-100, 0));
  EXPECT_EQ(join.motion, Translation(-150, 0));
}

TEST(PairMatcher, TellsRowsApartByAFewDigits) {
  const Join join = MatchWindows(DrawLog({640, 1500}, 17), {0, 0}, {0, 260});
  EXPECT_EQ(join.motion, Translation(-260, 0));
  EXPECT_LE(join.verdict, Verdict::Likely);
}

class PairMatcherUnrelated : public testing::TestWithParam<int> {};

TEST_P(PairMatcherUnrelated, HaveNothingInCommon) {
  const cv::Mat page = DrawArticle({640, 3000}, 18);
  cv::Mat captures[] = {Window(page, Size, {0, 0}), Window(page, Size, {0, 1500 + GetParam()})};
  for (cv::Mat& capture : captures) {
    Lay(DrawBar({640, 50}, 3), capture, {0, 0});
  }
  const Join join = Match(captures[0], captures[1]);
  EXPECT_EQ(join.verdict, Verdict::None);
  EXPECT_EQ(join.motion, Translation());
  EXPECT_EQ(join.compared, 0);
}

INSTANTIATE_TEST_SUITE_P(Places, PairMatcherUnrelated, testing::Range(0, 800, 100));

TEST(PairMatcher, CannotJoinBlankCaptures) {
  const cv::Mat blank(Size, CV_8UC4, cv::Scalar::all(255));
  EXPECT_GE(Match(blank, blank).verdict, Verdict::Doubtful);
}

TEST(PairMatcher, LooksAlongOneAxisWhereSoAsked) {
  const cv::Mat page = DrawArticle({1200, 1200}, 19);
  const cv::Mat first = Window(page, Size, {100, 100});
  const cv::Mat down = Window(page, Size, {100, 200});
  const cv::Mat right = Window(page, Size, {200, 100});
  EXPECT_EQ(Match(first, down, Vertical).motion, Translation(-100, 0));
  EXPECT_EQ(Match(first, down, Horizontal).motion.GetRows(), 0);
  EXPECT_EQ(Match(first, right, Horizontal).motion, Translation(0, -100));
  EXPECT_EQ(Match(first, right, Vertical).motion.GetCols(), 0);
  EXPECT_EQ(Match(first, right, static_cast<ScrollOrientation>(7)).motion, Translation());
}

TEST(PairMatcher, RefusesWhatIsNoPair) {
  const cv::Mat capture = DrawArticle(Size, 1);
  EXPECT_THROW(Match(capture, capture.rowRange(0, 400)), std::invalid_argument);
  EXPECT_THROW(Match(capture, cv::Mat()), std::invalid_argument);
  EXPECT_THROW(Match(capture, cv::Mat(Size, CV_8UC3, cv::Scalar())), std::invalid_argument);
  EXPECT_THROW(Match(cv::Mat(Size, CV_16UC4, cv::Scalar()), capture), std::invalid_argument);
  EXPECT_THROW(Match(cv::Mat(Size, CV_8UC2, cv::Scalar()), capture), std::invalid_argument);
}

class PairMatcherSmallSizes : public testing::TestWithParam<int> {};

TEST_P(PairMatcherSmallSizes, AreTakenWithoutHarm) {
  const cv::Mat page = DrawPhoto({64, 64}, 3);
  for (int height = 1; height < 40; height += 7) {
    const cv::Size size(GetParam(), height);
    const Join join = MatchWindows(page, {3, 3}, {3, 4}, size);
    EXPECT_LE(join.equal, join.compared);
  }
}

INSTANTIATE_TEST_SUITE_P(Widths, PairMatcherSmallSizes, testing::Values(1, 8, 15, 16, 17, 33));

/// A page that shows a slope of colour at some rows, and nothing else.
cv::Mat DrawSlope(const cv::Size& size, const cv::Range& rows, int red) {
  cv::Mat page(size, CV_8UC4, cv::Scalar::all(255));
  for (int row = rows.start; row < rows.end; ++row) {
    const int shade = (row - rows.start) / 3;
    page.row(row).colRange(100, 540).setTo(cv::Scalar(red + shade, 80 + shade, 200 - shade, 255));
  }
  return page;
}

TEST(PairMatcher, DoubtsThatSlopesOfColourAreTheSame) {
  const cv::Size size(640, 480);
  const Join join = Match(WithNoise(DrawSlope(size, {0, 130}, 60), 1),
                          WithNoise(DrawSlope(size, {350, 480}, 90), 2), Vertical);
  EXPECT_EQ(join.motion, Translation(350, 0));
  EXPECT_EQ(join.verdict, Verdict::Doubtful);
}

}  // namespace
}  // namespace ScrollingCapture
