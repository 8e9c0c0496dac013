#include <algorithm>
#include <limits>
#include <ostream>
#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>
#include <opencv2/imgproc.hpp>
#include <testkit/MatrixTesting.h>
#include <testkit/references/ReferencePreview.h>

#include <VelScrollingCapture/preview/PreviewImage.h>

namespace ScrollingCapture {
namespace {

using Testing::NoiseCapture;
using Testing::ReferencePreview;
using Testing::SameBits;

constexpr int Laid = 0;
constexpr int NotMoved = 1;
constexpr int Failed = 3;

const cv::Scalar OpaqueBlack(0, 0, 0, 255);

class OpenPreview : public PreviewImage {
 public:
  using PreviewImage::PreviewImage;
  using PreviewImage::UpdatePreview;
};

/// What a window at `corner` (x: column, y: row) of a large, blocky picture shows.
cv::Mat Window(const cv::Point& corner, const cv::Size& size) {
  static const cv::Mat picture = [] {
    cv::Mat enlarged;
    cv::resize(NoiseCapture({400, 400}, 7), enlarged, {2000, 2000}, 0, 0, cv::INTER_NEAREST);
    return enlarged;
  }();
  return picture(cv::Rect(corner, size)).clone();
}

cv::Mat Plain(const cv::Size& size, const cv::Scalar& colour) { return {size, CV_8UC4, colour}; }

/// One row of grey, opaque pixels.
cv::Mat GreyRow(const std::vector<uchar>& levels) {
  cv::Mat row(1, static_cast<int>(levels.size()), CV_8UC4);
  for (int column = 0; column < row.cols; ++column) {
    const uchar level = levels[static_cast<size_t>(column)];
    row.at<cv::Vec4b>(0, column) = cv::Vec4b(level, level, level, 255);
  }
  return row;
}

TEST(PreviewImage, EnlargesInEvenStepsBetweenPixels) {
  EXPECT_TRUE(SameBits(ResizeImage(GreyRow({0, 100}), {4, 1}), GreyRow({0, 25, 75, 100})));
}

TEST(PreviewImage, ShrinksToTheMeanOfTheNearestPixels) {
  EXPECT_TRUE(SameBits(ResizeImage(GreyRow({10, 30, 200, 100}), {2, 1}), GreyRow({20, 150})));
}

TEST(PreviewImage, ResizesToExactlyTheSizeAsked) {
  const cv::Scalar colour(10, 20, 30, 40);
  EXPECT_TRUE(SameBits(ResizeImage(Plain({40, 30}, colour), {17, 23}), Plain({17, 23}, colour)));
}

TEST(PreviewImage, RefusesToResizeFromOrToNothing) {
  EXPECT_THROW(ResizeImage(cv::Mat(), {4, 4}), cv::Exception);
  EXPECT_THROW(ResizeImage(GreyRow({1, 2}), {0, 4}), cv::Exception);
}

TEST(PreviewImage, ShowsItsBackgroundWhereNoCaptureLies) {
  PreviewImage preview({300, 40}, 20, 30);
  ASSERT_EQ(preview.AddCapture(NoiseCapture({250, 10}, 3)), Laid);
  const cv::Mat shown = preview.GetPreview();
  EXPECT_EQ(cv::Scalar(shown.at<cv::Vec4b>(19, 30)), PreviewBackground);
  EXPECT_EQ(cv::Scalar(shown.at<cv::Vec4b>(20, 29)), PreviewBackground);
  EXPECT_NE(cv::Scalar(shown.at<cv::Vec4b>(20, 30)), PreviewBackground);
  EXPECT_EQ(PreviewBackground, OpaqueBlack);
}

TEST(PreviewImage, StartsAsBackgroundOf750By750) {
  PreviewImage preview;
  EXPECT_TRUE(SameBits(preview.GetPreview(), Plain({750, 750}, OpaqueBlack)));
}

TEST(PreviewImage, StartsAsBackgroundOfTheSizeGiven) {
  PreviewImage preview({30, 20}, 1, 0);
  EXPECT_TRUE(SameBits(preview.GetPreview(), Plain({30, 20}, OpaqueBlack)));
}

TEST(PreviewImage, LaysTheFirstCaptureShrunkAtColumn250Row250) {
  const cv::Mat capture = NoiseCapture({2000, 1000}, 3);
  PreviewImage preview;
  EXPECT_EQ(preview.AddCapture(capture), Laid);

  cv::Mat expected = Plain({750, 750}, OpaqueBlack);
  ResizeImage(capture, {250, 125}).copyTo(expected(cv::Rect(250, 250, 250, 125)));
  EXPECT_TRUE(SameBits(preview.GetPreview(), expected));
}

TEST(PreviewImage, TakesRowBeforeColumn) {
  const cv::Mat capture = NoiseCapture({250, 10}, 3);
  PreviewImage preview({300, 40}, 20, 30);
  EXPECT_EQ(preview.AddCapture(capture), Laid);
  EXPECT_TRUE(SameBits(preview.GetPreview()(cv::Rect(30, 20, 250, 10)), capture));
}

TEST(PreviewImage, IgnoresACaptureThatDidNotMove) {
  const cv::Mat capture = NoiseCapture({500, 250}, 5);
  PreviewImage preview;
  ASSERT_EQ(preview.AddCapture(capture), Laid);
  const cv::Mat before = preview.GetPreview();
  EXPECT_EQ(preview.AddCapture(capture), NotMoved);
  EXPECT_TRUE(SameBits(preview.GetPreview(), before));
}

TEST(PreviewImage, LeavesTheCallersCaptureAsItIs) {
  const cv::Mat first = Window({500, 500}, {250, 200});
  const cv::Mat second = Window({500, 540}, {250, 200});
  PreviewImage preview;
  preview.AddCapture(first);
  preview.AddCapture(second);
  EXPECT_TRUE(SameBits(second, Window({500, 540}, {250, 200})));
}

TEST(PreviewImage, ShrinksEveryCaptureToTheSizeOfTheFirst) {
  PreviewImage preview;
  ReferencePreview reference({750, 750}, 250, 250);
  for (const cv::Size& size : {cv::Size(500, 400), cv::Size(300, 700), cv::Size(40, 20)}) {
    const cv::Mat capture = Window({size.width, size.height}, size);
    EXPECT_EQ(preview.AddCapture(capture), reference.AddCapture(capture));
    EXPECT_TRUE(SameBits(preview.GetPreview(), reference.canvas));
  }
}

TEST(PreviewImage, GrowsDownwardsWithBlackWhereNoCaptureLies) {
  OpenPreview preview;
  cv::Mat capture = NoiseCapture({250, 125}, 9);
  ASSERT_EQ(preview.AddCapture(capture), Laid);
  cv::Mat fitting = NoiseCapture({250, 125}, 10);
  EXPECT_EQ(preview.UpdatePreview(fitting, {250, 550, 250, 125}, Translation(-300, 0)), Laid);
  EXPECT_EQ(preview.GetPreview().size(), cv::Size(750, 750));

  const cv::Mat before = preview.GetPreview();
  cv::Mat below = NoiseCapture({250, 125}, 11);
  EXPECT_EQ(preview.UpdatePreview(below, {250, 850, 250, 125}, Translation(-300, 0)), Laid);
  cv::Mat expected = Plain({750, 975}, OpaqueBlack);
  before.copyTo(expected(cv::Rect(0, 0, 750, 750)));
  below.copyTo(expected(cv::Rect(250, 850, 250, 125)));
  EXPECT_TRUE(SameBits(preview.GetPreview(), expected));
}

TEST(PreviewImage, GrowsUpwardsByTheOvershootAndContinuesAtRowZero) {
  PreviewImage preview({250, 250}, 30, 0);
  ASSERT_EQ(preview.AddCapture(Window({500, 500}, {250, 200})), Laid);
  const cv::Mat before = preview.GetPreview();

  ASSERT_EQ(preview.AddCapture(Window({500, 430}, {250, 200})), Laid);
  const cv::Mat grown = preview.GetPreview();
  ASSERT_EQ(grown.size(), cv::Size(250, 250 + 40));
  EXPECT_TRUE(SameBits(grown.rowRange(0, 70), Window({500, 430}, {250, 70})));
  EXPECT_TRUE(SameBits(grown.rowRange(250, 290), before.rowRange(210, 250)));

  ASSERT_EQ(preview.AddCapture(Window({500, 420}, {250, 200})), Laid);
  EXPECT_EQ(preview.GetPreview().size(), cv::Size(250, 250 + 40 + 10));
}

TEST(PreviewImage, GrowsFromAnEmptyCanvas) {
  const cv::Mat capture = NoiseCapture({250, 90}, 12);
  PreviewImage preview({0, 0}, 1, 0);
  ASSERT_EQ(preview.AddCapture(capture), Laid);
  cv::Mat expected = Plain({250, 91}, OpaqueBlack);
  capture.copyTo(expected.rowRange(1, 91));
  EXPECT_TRUE(SameBits(preview.GetPreview(), expected));
}

/// What has to show when one capture is laid onto a black canvas at a place that may be outside.
cv::Mat LaidPixelByPixel(const cv::Size& canvas, const cv::Mat& capture, const cv::Point& place) {
  const cv::Point shift(std::max(-place.x, 0), std::max(-place.y, 0));
  // What sticks out at the far side is measured on the canvas before it grew.
  const int columnEnd = std::max(place.x, 0) + capture.cols;
  const int rowEnd = std::max(place.y, 0) + capture.rows;
  const cv::Size grown(canvas.width + shift.x + std::max(columnEnd - canvas.width, 0),
                       canvas.height + shift.y + std::max(rowEnd - canvas.height, 0));
  cv::Mat expected = Plain(grown, OpaqueBlack);
  for (int row = 0; row < capture.rows; ++row) {
    for (int column = 0; column < capture.cols; ++column) {
      expected.at<cv::Vec4b>(std::max(place.y, 0) + row, std::max(place.x, 0) + column) =
          capture.at<cv::Vec4b>(row, column);
    }
  }
  return expected;
}

/// A canvas that may be empty along one axis or both, and a capture.
class SmallPreview : public testing::TestWithParam<std::tuple<int, int, int, int>> {
 protected:
  const cv::Size canvas{std::get<0>(GetParam()), std::get<1>(GetParam())};
  const cv::Size capture{std::get<2>(GetParam()), std::get<3>(GetParam())};
};

TEST_P(SmallPreview, GrowsByAnyCaptureAtAnyPlace) {
  for (int row = -4; row <= 5; ++row) {
    for (int column = -4; column <= 5; ++column) {
      OpenPreview preview(canvas, 0, 0);
      cv::Mat pixels = NoiseCapture(capture, 6);
      const cv::Mat expected = LaidPixelByPixel(canvas, pixels, {column, row});
      ASSERT_EQ(preview.UpdatePreview(pixels, {{column, row}, capture}, {}), Laid);
      ASSERT_TRUE(SameBits(preview.GetPreview(), expected)) << row << ", " << column;
    }
  }
}

std::string NameOfSmallPreview(const testing::TestParamInfo<SmallPreview::ParamType>& test) {
  const auto& [width, height, captureWidth, captureHeight] = test.param;
  return std::to_string(captureWidth) + "x" + std::to_string(captureHeight) + "On" +
         std::to_string(width) + "x" + std::to_string(height);
}

INSTANTIATE_TEST_SUITE_P(PreviewImage, SmallPreview,
                         testing::Combine(testing::Range(0, 4), testing::Range(0, 4),
                                          testing::Range(1, 5), testing::Range(1, 5)),
                         NameOfSmallPreview);

struct FlatCanvas {
  std::string name;
  cv::Size size;
};
std::ostream& operator<<(std::ostream& stream, const FlatCanvas& canvas) {
  return stream << canvas.name;
}

class FlatPreview : public testing::TestWithParam<FlatCanvas> {};

TEST_P(FlatPreview, GrowsFromNothingWhileTheContentScrollsDown) {
  PreviewImage preview(GetParam().size, 0, 0);
  cv::Mat expected = Plain({std::max(GetParam().size.width, 250), 280}, OpaqueBlack);
  for (const int row : {0, 40, 80}) {
    ASSERT_EQ(preview.AddCapture(Window({500, 500 + row}, {250, 200})), Laid);
  }
  Window({500, 500}, {250, 280}).copyTo(expected.colRange(0, 250));
  EXPECT_TRUE(SameBits(preview.GetPreview(), expected));
}

INSTANTIATE_TEST_SUITE_P(PreviewImage, FlatPreview,
                         testing::Values(FlatCanvas{"Wider", {300, 0}},
                                         FlatCanvas{"AsWide", {250, 0}},
                                         FlatCanvas{"Narrower", {200, 0}},
                                         FlatCanvas{"WithoutColumns", {0, 100}},
                                         FlatCanvas{"OneRow", {300, 1}}),
                         [](const auto& test) { return test.param.name; });

TEST(PreviewImage, GivesAnEmptyCanvasWithItsSizeAndType) {
  PreviewImage preview({300, 0}, 0, 0);
  EXPECT_EQ(preview.GetPreview().size(), cv::Size(300, 0));
  EXPECT_EQ(preview.GetPreview().type(), CV_8UC4);
}

TEST(PreviewImage, GivesCopiesOfTheCanvas) {
  PreviewImage preview;
  preview.GetPreview().setTo(cv::Scalar::all(9));
  preview.GetPreview(750, 750).setTo(cv::Scalar::all(9));
  EXPECT_TRUE(SameBits(preview.GetPreview(), Plain({750, 750}, OpaqueBlack)));
}

struct Box {
  std::string name;
  cv::Size canvas;
  cv::Size box;
  cv::Size fitted;
};
std::ostream& operator<<(std::ostream& stream, const Box& box) { return stream << box.name; }

class FittedPreview : public testing::TestWithParam<Box> {};

TEST_P(FittedPreview, KeepsTheAspectInsideTheBox) {
  PreviewImage preview(GetParam().canvas, 0, 0);
  ASSERT_EQ(preview.AddCapture(NoiseCapture({250, 8}, 2)), Laid);
  const cv::Mat fitted = preview.GetPreview(GetParam().box.width, GetParam().box.height);
  EXPECT_EQ(fitted.size(), GetParam().fitted);
  EXPECT_TRUE(SameBits(fitted, ResizeImage(preview.GetPreview(), GetParam().fitted)));
}

INSTANTIATE_TEST_SUITE_P(
    PreviewImage, FittedPreview,
    testing::Values(Box{"LimitedByHeight", {250, 1000}, {200, 400}, {100, 400}},
                    Box{"LimitedByHeightThenWidth", {250, 1000}, {50, 400}, {50, 200}},
                    Box{"LimitedByWidth", {1000, 250}, {400, 300}, {400, 100}},
                    Box{"TruncatesEachStep", {333, 1000}, {10, 100}, {10, 30}},
                    Box{"FitsAlready", {300, 200}, {300, 200}, {300, 200}}),
    [](const auto& test) { return test.param.name; });

TEST(PreviewImage, RefusesABoxWithoutAPixel) {
  PreviewImage preview;
  EXPECT_THROW(preview.GetPreview(0, 0), cv::Exception);
  EXPECT_THROW(preview.GetPreview(-5, 100), cv::Exception);
  EXPECT_THROW(preview.GetPreview(100, std::numeric_limits<int>::min()), cv::Exception);
}

struct Walk {
  std::string name;
  cv::Size canvas;
  cv::Point origin;
  cv::Size capture;
  std::vector<cv::Point> steps;
  cv::Size grown;
};
std::ostream& operator<<(std::ostream& stream, const Walk& walk) { return stream << walk.name; }

class PreviewWalk : public testing::TestWithParam<Walk> {};

TEST_P(PreviewWalk, EqualsTheReferenceBitForBit) {
  const Walk& walk = GetParam();
  PreviewImage preview(walk.canvas, walk.origin.y, walk.origin.x);
  ReferencePreview reference(walk.canvas, walk.origin.y, walk.origin.x);
  cv::Point corner(500, 500);
  for (const cv::Point& step : walk.steps) {
    corner += step;
    const cv::Mat capture = Window(corner, walk.capture);
    ASSERT_EQ(preview.AddCapture(capture), reference.AddCapture(capture));
    ASSERT_TRUE(SameBits(preview.GetPreview(), reference.canvas));
  }
  EXPECT_EQ(preview.GetPreview().size(), walk.grown);
}

INSTANTIATE_TEST_SUITE_P(
    PreviewImage, PreviewWalk,
    testing::Values(
        Walk{"Down",
             {250, 250},
             {0, 0},
             {250, 200},
             {{0, 0}, {0, 60}, {0, 60}, {0, 60}},
             {250, 380}},
        Walk{"Up",
             {250, 250},
             {0, 50},
             {250, 200},
             {{0, 0}, {0, -60}, {0, -60}, {0, -60}},
             {250, 380}},
        Walk{"Right", {300, 250}, {0, 0}, {250, 200}, {{0, 0}, {70, 0}, {70, 0}}, {390, 250}},
        Walk{"Left", {300, 250}, {20, 0}, {250, 200}, {{0, 0}, {-70, 0}, {-70, 0}}, {420, 250}},
        Walk{"LeftAndUpAtOnce",
             {260, 210},
             {5, 5},
             {250, 200},
             {{0, 0}, {-30, -40}, {-30, -40}},
             {315, 285}},
        Walk{"RightAndDownAtOnce",
             {260, 210},
             {5, 5},
             {250, 200},
             {{0, 0}, {30, 40}, {30, 40}},
             {315, 285}},
        Walk{"LeftAndDownThenBack",
             {260, 210},
             {5, 5},
             {250, 200},
             {{0, 0}, {-30, 40}, {-30, 40}, {60, -80}},
             {315, 285}},
        Walk{"RightAndUp",
             {260, 210},
             {5, 5},
             {250, 200},
             {{0, 0}, {30, -40}, {30, -40}},
             {315, 285}},
        Walk{"OddSizesAndShrinking",
             {251, 251},
             {0, 1},
             {503, 401},
             {{0, 0}, {0, 120}, {0, 121}},
             {251, 320}},
        Walk{"WiderThanTall",
             {250, 100},
             {0, 1},
             {900, 301},
             {{0, 0}, {0, 80}, {0, 80}},
             {250, 128}},
        Walk{"TallerThanWide",
             {250, 250},
             {0, 1},
             {301, 900},
             {{0, 0}, {0, 300}, {0, 300}},
             {250, 1246}},
        Walk{"EnlargedFromNarrowCaptures",
             {250, 190},
             {0, 1},
             {101, 77},
             {{0, 0}, {0, 30}},
             {250, 191}},
        Walk{"TallerThanTheCanvasAndAboveIt",
             {100, 100},
             {0, 0},
             {250, 200},
             {{0, 0}, {0, -50}},
             {250, 250}},
        Walk{"StartsOutsideTheCanvas",
             {100, 100},
             {-20, 400},
             {250, 200},
             {{0, 0}, {0, 50}},
             {270, 650}}),
    [](const auto& test) { return test.param.name; });

TEST(PreviewImage, ReportsAnEmptyCaptureAndGoesOnWithTheNext) {
  const cv::Mat capture = NoiseCapture({250, 125}, 4);
  PreviewImage preview;
  EXPECT_EQ(preview.AddCapture(cv::Mat()), Failed);
  EXPECT_EQ(preview.AddCapture(cv::Mat(5, 0, CV_8UC4)), Failed);
  EXPECT_TRUE(SameBits(preview.GetPreview(), Plain({750, 750}, OpaqueBlack)));
  EXPECT_EQ(preview.AddCapture(capture), Laid);
  EXPECT_TRUE(SameBits(preview.GetPreview()(cv::Rect(250, 250, 250, 125)), capture));
}

TEST(PreviewImage, ReportsACaptureThatShrinksToNothing) {
  PreviewImage preview;
  EXPECT_EQ(preview.AddCapture(Plain({1000, 1}, OpaqueBlack)), Failed);
  EXPECT_EQ(preview.AddCapture(NoiseCapture({250, 125}, 4)), Laid);
}

TEST(PreviewImage, ReportsACaptureWithoutAlpha) {
  PreviewImage preview;
  EXPECT_EQ(preview.AddCapture(cv::Mat(125, 250, CV_8UC3, cv::Scalar(1, 2, 3))), Failed);
  EXPECT_TRUE(SameBits(preview.GetPreview(), Plain({750, 750}, OpaqueBlack)));
  EXPECT_EQ(preview.AddCapture(NoiseCapture({250, 125}, 4)), Laid);
}

TEST(PreviewImage, ReportsACanvasThatCannotGrow) {
  constexpr int FarAway = std::numeric_limits<int>::max();
  PreviewImage preview({10, 10}, FarAway, FarAway);
  EXPECT_EQ(preview.AddCapture(NoiseCapture({250, 125}, 4)), Failed);
  EXPECT_TRUE(SameBits(preview.GetPreview(), Plain({10, 10}, OpaqueBlack)));

  PreviewImage above({10, 10}, std::numeric_limits<int>::min(), 0);
  EXPECT_EQ(above.AddCapture(NoiseCapture({250, 125}, 4)), Failed);
}

TEST(PreviewImage, MatchesTheNextCaptureWithTheLastOneLaid) {
  PreviewImage preview;
  ReferencePreview reference({750, 750}, 250, 250);
  const cv::Mat first = Window({500, 500}, {250, 200});
  const cv::Mat second = Window({500, 540}, {250, 200});
  ASSERT_EQ(preview.AddCapture(first), reference.AddCapture(first));
  EXPECT_EQ(preview.AddCapture(cv::Mat()), Failed);
  ASSERT_EQ(preview.AddCapture(second), reference.AddCapture(second));
  EXPECT_TRUE(SameBits(preview.GetPreview(), reference.canvas));
}

}  // namespace
}  // namespace ScrollingCapture
