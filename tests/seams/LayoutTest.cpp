#include <limits>
#include <ostream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <VelScrollingCapture/seams/Layout.h>

namespace ScrollingCapture {

void PrintTo(const Place& place, std::ostream* stream) {
  *stream << "row " << place.row << ", column " << place.column;
}

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using Translations = std::vector<Translation>;

const cv::Size CaptureSize(50, 100);

TEST(Layout, OfASingleCaptureIsTheCapture) {
  const Layout layout = LayoutOf(CaptureSize, {});
  EXPECT_EQ(layout.size, CaptureSize);
  EXPECT_THAT(layout.places, ElementsAre(Place{0, 0}));
}

struct Scroll {
  std::string name;
  Translations translations;
  cv::Size size;
  std::vector<Place> places;
};

void PrintTo(const Scroll& scroll, std::ostream* stream) { *stream << scroll.name; }

class LayoutOfAScroll : public testing::TestWithParam<Scroll> {};

TEST_P(LayoutOfAScroll, PutsEveryCaptureAtThePlaceBeforeMinusItsTranslation) {
  const Layout layout = LayoutOf(CaptureSize, GetParam().translations);
  EXPECT_EQ(layout.size, GetParam().size);
  EXPECT_THAT(layout.places, ElementsAreArray(GetParam().places));
}

INSTANTIATE_TEST_SUITE_P(
    Scrolls, LayoutOfAScroll,
    testing::Values(
        Scroll{"Down", {{-10, 0}, {-20, 0}}, {50, 130}, {{0, 0}, {10, 0}, {30, 0}}},
        Scroll{"Up", {{10, 0}, {20, 0}}, {50, 130}, {{30, 0}, {20, 0}, {0, 0}}},
        Scroll{"Right", {{0, -10}, {0, -20}}, {80, 100}, {{0, 0}, {0, 10}, {0, 30}}},
        Scroll{"Left", {{0, 10}, {0, 20}}, {80, 100}, {{0, 30}, {0, 20}, {0, 0}}},
        Scroll{"DownAndLeft", {{-10, 5}, {-10, 5}}, {60, 120}, {{0, 10}, {10, 5}, {20, 0}}},
        Scroll{"NotAtAll", {{0, 0}, {-10, 0}}, {50, 110}, {{0, 0}, {0, 0}, {10, 0}}},
        Scroll{"BackToTheStart", {{-10, 0}, {10, 0}}, {50, 110}, {{0, 0}, {10, 0}, {0, 0}}},
        Scroll{"DownUpDownGrowsByTheWholeLastStep",
               {{-10, 0}, {5, 0}, {-10, 0}},
               {50, 120},
               {{0, 0}, {10, 0}, {5, 0}, {15, 0}}},
        Scroll{"UpDownUpGrowsByTheWholeLastStep",
               {{10, 0}, {-5, 0}, {10, 0}},
               {50, 120},
               {{20, 0}, {10, 0}, {15, 0}, {5, 0}}}),
    [](const auto& test) { return test.param.name; });

TEST(Layout, HoldsEveryCaptureOfARandomWalk) {
  cv::RNG random(3);
  for (int walk = 0; walk < 500; ++walk) {
    Translations translations;
    for (int step = random.uniform(0, 12); step > 0; --step) {
      translations.emplace_back(random.uniform(-30, 31), random.uniform(-30, 31));
    }
    const Layout layout = LayoutOf(CaptureSize, translations);
    const cv::Rect result({}, layout.size);
    ASSERT_EQ(layout.places.size(), translations.size() + 1);
    for (const Place& place : layout.places) {
      const cv::Rect capture({place.column, place.row}, CaptureSize);
      ASSERT_EQ(capture & result, capture);
    }
  }
}

TEST(Layout, RefusesAResultThatNoMatrixCanBe) {
  constexpr int Lowest = std::numeric_limits<int>::min();
  constexpr int Highest = std::numeric_limits<int>::max();
  EXPECT_THROW(LayoutOf(CaptureSize, {{Lowest, 0}}), cv::Exception);
  EXPECT_THROW(LayoutOf(CaptureSize, {{0, Highest}}), cv::Exception);
  EXPECT_THROW(LayoutOf(CaptureSize, {{Highest, 0}, {Highest, 0}, {Highest, 0}}), cv::Exception);
  EXPECT_EQ(LayoutOf(CaptureSize, {{100 - Highest, 0}}).size.height, Highest);
}

}  // namespace
}  // namespace ScrollingCapture
