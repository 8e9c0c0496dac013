#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <testkit/pages/DrawnScene.h>

namespace ScrollingCapture {
namespace {

using Testing::Blue;
using Testing::Compose;
using Testing::DifferentPixels;
using Testing::DrawnScene;
using Testing::DrawText;
using Testing::Ink;
using Testing::Pale;
using Testing::ScrolledDown;
using Testing::TextPage;
using Testing::White;

const cv::Size Window(260, 200);
constexpr int Last = 5;

DrawnScene TextScene() { return {TextPage({260, 600}, 1), Window, ScrolledDown()}; }

void DrawHeader(cv::Mat& window, int height = 28) {
  window(cv::Rect(0, 0, window.cols, height)).setTo(Blue);
  DrawText(window, {8, 4, window.cols - 16, 18}, 77, White);
}

void DrawFooter(cv::Mat& picture, int height = 20) {
  const cv::Rect area(0, picture.rows - height, picture.cols, height);
  picture(area).setTo(Pale);
  DrawText(picture, area, 78);
}

void DrawButton(cv::Mat& picture) {
  const cv::Point centre(picture.cols - 40, picture.rows - 32);
  cv::ellipse(picture, centre, {28, 14}, 0, 0, 360, Blue, cv::FILLED);
  picture(cv::Rect(centre - cv::Point(10, 2), cv::Size(20, 4))).setTo(White);
}

void DrawPointer(cv::Mat& window, const cv::Point& tip) {
  for (int row = 0; row < 14; ++row) {
    window(cv::Rect(tip + cv::Point(0, row), cv::Size(1 + row / 2, 1))).setTo(Ink);
  }
}

TEST(MosaicRulesTest, ContentAloneIsShownAsItIs) {
  EXPECT_EQ(0, DifferentPixels(Compose(TextScene()), TextScene().Content()));
}

TEST(MosaicRulesTest, HeaderAppearsOnceAtTheTop) {
  const DrawnScene scene = TextScene().With([](int, cv::Mat& window) { DrawHeader(window); });
  cv::Mat expected = scene.Content();
  DrawHeader(expected);
  EXPECT_EQ(0, DifferentPixels(Compose(scene), expected));
}

TEST(MosaicRulesTest, HeaderOfTheSameColourAsThePageAppearsOnceAtTheTop) {
  const auto draw = [](cv::Mat& picture) {
    picture(cv::Rect(0, 0, 260, 28)).setTo(White);
    DrawText(picture, {8, 4, 200, 18}, 5);
    picture(cv::Rect(0, 27, 260, 1)).setTo(Ink);
  };
  const DrawnScene scene = TextScene().With([&](int, cv::Mat& window) { draw(window); });
  cv::Mat expected = scene.Content();
  draw(expected);
  EXPECT_EQ(0, DifferentPixels(Compose(scene), expected));
}

TEST(MosaicRulesTest, HeaderThatComesLaterDoesNotAppear) {
  const DrawnScene scene = TextScene().With([](int capture, cv::Mat& window) {
    if (capture >= 2) {
      DrawHeader(window);
    }
  });
  EXPECT_EQ(0, DifferentPixels(Compose(scene), scene.Content()));
}

TEST(MosaicRulesTest, HeaderThatShrinksAppearsInItsFirstSize) {
  const DrawnScene scene = TextScene().With(
      [](int capture, cv::Mat& window) { DrawHeader(window, capture == 0 ? 44 : 26); });
  cv::Mat expected = scene.Content();
  DrawHeader(expected, 44);
  EXPECT_EQ(0, DifferentPixels(Compose(scene), expected));
}

TEST(MosaicRulesTest, FooterAppearsOnceAtTheBottom) {
  const DrawnScene scene = TextScene().With([](int, cv::Mat& window) { DrawFooter(window); });
  cv::Mat expected = scene.Content();
  DrawFooter(expected);
  EXPECT_EQ(0, DifferentPixels(Compose(scene), expected));
}

TEST(MosaicRulesTest, FloatingButtonAppearsOnceAtTheEnd) {
  const DrawnScene scene = TextScene().With([](int, cv::Mat& window) { DrawButton(window); });
  cv::Mat expected = scene.Content();
  DrawButton(expected);
  EXPECT_EQ(0, DifferentPixels(Compose(scene), expected));
}

TEST(MosaicRulesTest, BannerThatIsClosedDoesNotAppear) {
  const DrawnScene scene = TextScene().With([](int capture, cv::Mat& window) {
    if (capture < 3) {
      const cv::Rect area(30, 130, 200, 60);
      window(area).setTo(cv::Scalar(230, 250, 255, 255));
      DrawText(window, area, 9);
      cv::rectangle(window, area, Ink);
    }
  });
  EXPECT_EQ(0, DifferentPixels(Compose(scene), scene.Content()));
}

/// A panel at a side of the window, with a list of entries.
struct SidePanel {
  std::string name;
  std::vector<cv::Rect> entries;  ///< in the panel
  bool isRight = false;
  bool hasHeader = false;
  cv::Scalar colour = Pale;
  std::vector<Place> places = ScrolledDown();

  void Draw(cv::Mat& picture) const {
    constexpr int Width = 70;
    const int left = isRight ? picture.cols - Width : 0;
    const int border = isRight ? left : left + Width - 1;
    picture(cv::Rect(left, 0, Width, picture.rows)).setTo(colour);
    for (const cv::Rect& entry : entries) {
      DrawText(picture, entry + cv::Point(left, 0), static_cast<std::uint64_t>(12 + entry.y));
    }
    picture(cv::Rect(border, 0, 1, picture.rows)).setTo(Ink);
    if (hasHeader) {
      DrawHeader(picture);
    }
  }
};

/// Entries of one line each, with so many rows from one to the next.
std::vector<cv::Rect> Entries(int top, const std::vector<int>& distances) {
  std::vector<cv::Rect> entries = {{4, top, 60, 13}};
  for (const int distance : distances) {
    entries.push_back(entries.back() + cv::Point(0, distance));
  }
  return entries;
}

std::vector<Place> ScrolledBySmallSteps() {
  return {{0, 0},   {30, 0},  {64, 0},  {91, 0},  {127, 0}, {160, 0},
          {181, 0}, {220, 0}, {256, 0}, {300, 0}, {341, 0}};
}

class SidePanelTest : public testing::TestWithParam<SidePanel> {};

TEST_P(SidePanelTest, StandsAtTheTopAndItsBackgroundGoesOn) {
  const SidePanel& panel = GetParam();
  const DrawnScene scene =
      DrawnScene(TextPage({260, 600}, 1), Window, panel.places).With([&](int, cv::Mat& window) {
        panel.Draw(window);
      });
  cv::Mat expected = scene.Content();
  panel.Draw(expected);
  EXPECT_EQ(0, DifferentPixels(Compose(scene), expected));
}

INSTANTIATE_TEST_SUITE_P(
    Panels, SidePanelTest,
    testing::Values(SidePanel{"ShortList", {{4, 4, 60, 70}}},
                    SidePanel{"ListLongerThanTheFirstStep", {{4, 4, 60, 110}}},
                    SidePanel{"SparseListLongerThanTheFirstStep", Entries(4, {24, 24, 24, 24})},
                    SidePanel{"UnevenGaps", Entries(4, {20, 31, 17, 38})},
                    SidePanel{"AtTheRight", Entries(4, {20, 31, 17, 38}), true},
                    SidePanel{"BelowAHeader", Entries(34, {24, 31, 17}), false, true},
                    SidePanel{"AtTheRightBelowAHeader", Entries(34, {24, 31, 17}), true, true},
                    SidePanel{"OfThePagesColour", Entries(4, {24, 24, 24, 24}), false, false,
                              White},
                    SidePanel{"SmallSteps", Entries(4, {20, 31, 17, 38, 26}), false, false, Pale,
                              ScrolledBySmallSteps()},
                    SidePanel{"SmallStepsBelowAHeader", Entries(34, {20, 31, 17, 26}), true, true,
                              Pale, ScrolledBySmallSteps()}),
    [](const auto& panel) { return panel.param.name; });

/// A margin is no panel, though a bar that stands still crosses it.
TEST(MosaicRulesTest, PointerAboveAMarginDoesNotAppear) {
  const DrawnScene scene = DrawnScene(TextPage({260, 600}, 1), Window, ScrolledBySmallSteps())
                               .With([](int, cv::Mat& window) {
                                 DrawHeader(window);
                                 DrawPointer(window, {2, 110});
                               });
  cv::Mat expected = scene.Content();
  DrawHeader(expected);
  EXPECT_EQ(0, DifferentPixels(Compose(scene), expected));
}

TEST(MosaicRulesTest, ScrollbarWhoseThumbMovesLeavesTheContentAlone) {
  const DrawnScene scene = TextScene().With([](int capture, cv::Mat& window) {
    window(cv::Rect(248, 0, 12, 200)).setTo(Pale);
    window(cv::Rect(250, 10 + 25 * capture, 8, 40)).setTo(Blue);
  });
  const cv::Rect content(0, 0, 248, 541);
  EXPECT_EQ(0, DifferentPixels(Compose(scene)(content), scene.Content()(content)));
}

TEST(MosaicRulesTest, PointerDoesNotAppearWhereAnotherCaptureShowsThePlace) {
  const DrawnScene scene = TextScene().With([](int, cv::Mat& window) {
    DrawPointer(window, {120, 90});
  });
  EXPECT_EQ(0, DifferentPixels(Compose(scene), scene.Content()));
}

TEST(MosaicRulesTest, TooltipOfOneCaptureDoesNotAppear) {
  const DrawnScene scene = TextScene().With([](int capture, cv::Mat& window) {
    if (capture == 2) {
      const cv::Rect area(60, 100, 90, 24);
      window(area).setTo(cv::Scalar(225, 255, 255, 255));
      DrawText(window, area, 4);
    }
  });
  EXPECT_EQ(0, DifferentPixels(Compose(scene), scene.Content()));
}

TEST(MosaicRulesTest, RowThatIsLitInOneCaptureIsShownAsMostCapturesShowIt) {
  const DrawnScene scene = TextScene().With([](int capture, cv::Mat& window) {
    if (capture == 2) {
      cv::Mat row = window(cv::Rect(0, 96, 260, 12));
      cv::Mat isPaper;
      cv::inRange(row, White, White, isPaper);
      row.setTo(cv::Scalar(150, 220, 255, 255), isPaper);
    }
  });
  EXPECT_EQ(0, DifferentPixels(Compose(scene), scene.Content()));
}

TEST(MosaicRulesTest, LaterCaptureIsRightOnATie) {
  cv::Mat page = TextPage({260, 300}, 3);
  const cv::Rect picture(60, 110, 120, 60);
  const auto draw = [&](cv::Mat& target, const cv::Point& place) {
    cv::RNG random(8);
    random.fill(target(picture - place), cv::RNG::UNIFORM, cv::Scalar(0, 0, 0, 255),
                cv::Scalar(256, 256, 256, 256));
  };
  page(picture).setTo(Pale);
  const std::vector<Place> places = {{0, 0}, {40, 0}};
  const DrawnScene scene = DrawnScene(page, Window, places).With([&](int capture, cv::Mat& window) {
    if (capture == 1) {
      draw(window, {0, 40});
    }
  });
  cv::Mat expected = scene.Content();
  draw(expected, {});
  EXPECT_EQ(0, DifferentPixels(Compose(scene), expected));
}

/// A part of the page that looks different in every capture.
struct OwnPart {
  cv::Rect area;

  cv::Mat At(int capture) const {
    cv::Mat frame(area.size(), CV_8UC4);
    cv::RNG random(static_cast<std::uint64_t>(100 + capture));
    random.fill(frame, cv::RNG::UNIFORM, cv::Scalar(0, 0, 0, 255), cv::Scalar(256, 256, 256, 256));
    return frame;
  }

  DrawnScene Scene() const {
    const std::vector<Place> places = ScrolledDown();
    return TextScene().With([*this, places](int capture, cv::Mat& window) {
      const cv::Point shift(0, -places[static_cast<size_t>(capture)].row);
      const cv::Rect shown = (area + shift) & cv::Rect({}, window.size());
      if (!shown.empty()) {
        At(capture)(shown - shift - area.tl()).copyTo(window(shown));
      }
    });
  }
};

class OwnPartTest : public testing::TestWithParam<cv::Rect> {};

TEST_P(OwnPartTest, ComesFromOneCaptureAsAWhole) {
  const OwnPart part = {GetParam()};
  const cv::Mat shown = Compose(part.Scene())(part.area);
  bool isFromOne = false;
  for (int capture = 0; capture <= Last; ++capture) {
    isFromOne = isFromOne || DifferentPixels(shown, part.At(capture)) == 0;
  }
  EXPECT_TRUE(isFromOne);
}

TEST_P(OwnPartTest, LeavesTheRestAlone) {
  const OwnPart part = {GetParam()};
  const DrawnScene scene = part.Scene();
  cv::Mat picture = Compose(scene);
  scene.Content()(part.area).copyTo(picture(part.area));
  EXPECT_EQ(0, DifferentPixels(picture, scene.Content()));
}

INSTANTIATE_TEST_SUITE_P(Parts, OwnPartTest,
                         testing::Values(cv::Rect(30, 250, 20, 20), cv::Rect(100, 40, 60, 60),
                                         cv::Rect(90, 210, 130, 80), cv::Rect(54, 277, 84, 141),
                                         cv::Rect(86, 386, 156, 120)));

TEST(MosaicRulesTest, ParallaxLeavesTheRestAlone) {
  const cv::Rect band(0, 220, 260, 60);
  const std::vector<Place> places = ScrolledDown();
  const cv::Mat backdrop = TextPage({260, 900}, 50);
  const DrawnScene scene = TextScene().With([&](int capture, cv::Mat& window) {
    const int row = places[static_cast<size_t>(capture)].row;
    const cv::Rect shown = (band - cv::Point(0, row)) & cv::Rect({}, window.size());
    if (!shown.empty()) {
      backdrop(shown + cv::Point(0, row / 2)).copyTo(window(shown));
    }
  });
  cv::Mat picture = Compose(scene);
  scene.Content()(band).copyTo(picture(band));
  EXPECT_EQ(0, DifferentPixels(picture, scene.Content()));
}

TEST(MosaicRulesTest, FrozenPanesAppearOnceInFullLength) {
  constexpr int Top = 24;
  constexpr int Left = 40;
  cv::Mat page = TextPage({700, 600}, 6);
  cv::Mat heads(Top, 700, CV_8UC4, Pale);
  DrawText(heads, {0, 0, 700, Top}, 61);
  cv::Mat numbers(600, Left, CV_8UC4, Pale);
  DrawText(numbers, {0, 0, Left, 600}, 62);
  const std::vector<Place> places = {{0, 0}, {60, 0}, {60, 70}, {110, 120}, {150, 60}, {90, 180}};
  const DrawnScene scene = DrawnScene(page, Window, places).With([&](int capture, cv::Mat& window) {
    const Place place = places[static_cast<size_t>(capture)];
    heads(cv::Rect(place.column + Left, 0, Window.width - Left, Top))
        .copyTo(window(cv::Rect(Left, 0, Window.width - Left, Top)));
    numbers(cv::Rect(0, place.row + Top, Left, Window.height - Top))
        .copyTo(window(cv::Rect(0, Top, Left, Window.height - Top)));
    window(cv::Rect(0, 0, Left, Top)).setTo(Blue);
  });
  const cv::Mat picture = Compose(scene);
  ASSERT_EQ(cv::Size(440, 350), picture.size());
  const cv::Rect top(Left, 0, 440 - Left, Top);
  const cv::Rect left(0, Top, Left, 350 - Top);
  EXPECT_EQ(0, DifferentPixels(picture(top), heads(top)));
  EXPECT_EQ(0, DifferentPixels(picture(left), numbers(left)));
  const cv::Rect shownByTheFirst(Left, Top, Window.width - Left, Window.height - Top);
  EXPECT_EQ(0, DifferentPixels(picture(shownByTheFirst), page(shownByTheFirst)));
}

TEST(MosaicRulesTest, PanInBothDirectionsShowsWhatCapturesShow) {
  const DrawnScene scene(TextPage({600, 600}, 7), Window,
                         {{100, 100}, {140, 180}, {60, 260}, {20, 150}, {180, 60}});
  EXPECT_EQ(0, DifferentPixels(Compose(scene), scene.Content()));
}

TEST(MosaicRulesTest, PlacesBetweenCapturesAreTransparent) {
  const DrawnScene scene(TextPage({260, 700}, 8), Window, {{0, 0}, {60, 0}, {400, 0}});
  const cv::Mat picture = Compose(scene);
  EXPECT_EQ(0, DifferentPixels(picture, scene.Content()));
  EXPECT_EQ(0, cv::countNonZero(picture(cv::Rect(0, 260, 260, 140)).reshape(1)));
}

std::vector<Place> ScrolledBack() {
  return {{0, 0}, {70, 0}, {160, 0}, {95, 0}, {95, 0}, {203, 0}, {341, 0}};
}

class ScrollOrderTest : public testing::TestWithParam<std::vector<Place>> {};

TEST_P(ScrollOrderTest, BarsAppearOnceAtTheEnds) {
  DrawnScene scene(TextPage({260, 600}, 1), Window, GetParam());
  scene.With([](int, cv::Mat& window) {
    DrawHeader(window);
    DrawFooter(window);
  });
  cv::Mat expected = scene.Content();
  DrawHeader(expected);
  DrawFooter(expected);
  EXPECT_EQ(0, DifferentPixels(Compose(scene), expected));
}

INSTANTIATE_TEST_SUITE_P(
    Orders, ScrollOrderTest,
    testing::Values(ScrolledDown(), ScrolledBack(),
                    std::vector<Place>{{341, 0}, {262, 0}, {203, 0}, {125, 0}, {70, 0}, {0, 0}},
                    std::vector<Place>{{0, 0}, {65, 0}, {130, 0}, {195, 0}, {260, 0}, {325, 0}}));

TEST(MosaicRulesTest, BarsOfASidewaysWindowAppearOnceAtTheEnds) {
  cv::Mat page = TextPage({620, 260}, 9);
  const std::vector<Place> places = {{0, 0}, {0, 70}, {0, 125}, {0, 203}, {0, 262}, {0, 341}};
  const auto drawLeft = [](cv::Mat& picture) {
    cv::Mat bar = picture(cv::Rect(0, 0, 30, picture.rows));
    bar.setTo(Blue);
    DrawText(picture, {2, 20, 26, 100}, 91, White);
  };
  const DrawnScene scene =
      DrawnScene(page, Window, places).With([&](int, cv::Mat& window) { drawLeft(window); });
  cv::Mat expected = scene.Content();
  drawLeft(expected);
  EXPECT_EQ(0, DifferentPixels(Compose(scene), expected));
}

TEST(MosaicRulesTest, KeptFixedPartsAreLaidOverOneAnother) {
  const DrawnScene scene = TextScene().With([](int, cv::Mat& window) { DrawHeader(window); });
  cv::Mat expected(scene.Content().size(), CV_8UC4);
  const std::vector<Place> places = ScrolledDown();
  for (int capture = 0; capture <= Last; ++capture) {
    scene.CaptureAt(capture).copyTo(
        expected(cv::Rect({0, places[static_cast<size_t>(capture)].row}, Window)));
  }
  MosaicSettings settings;
  settings.fixedParts = FixedParts::Keep;
  EXPECT_EQ(0, DifferentPixels(Compose(scene, settings), expected));
}

}  // namespace
}  // namespace ScrollingCapture
