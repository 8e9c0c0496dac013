#include <iostream>
#include <limits>
#include <ostream>
#include <string>

#include <gtest/gtest.h>
#include <testkit/MatrixTesting.h>
#include <testkit/StreamCapture.h>
#include <testkit/references/ReferenceCropping.h>

#include <VelScrollingCapture/core/Utilities.h>

namespace ScrollingCapture {
namespace {

using Testing::NoiseCapture;
using Testing::SameBits;
using Testing::StreamCapture;

const cv::Scalar Opaque(10, 20, 30, 255);

cv::Mat OpaqueCapture(int rows, int cols) { return {rows, cols, CV_8UC4, Opaque}; }

/// An opaque capture of which a block is transparent.
cv::Mat ExpectedCapture(const cv::Size& size, const cv::Rect& transparent) {
  cv::Mat capture = OpaqueCapture(size.height, size.width);
  capture(transparent).setTo(cv::Scalar(0, 0, 0, 0));
  return capture;
}

TEST(Cropping, ClearsARowFromTheStartToEitherSide) {
  cv::Mat left = OpaqueCapture(4, 6);
  Utilities::MakeRowTransparent(left, cv::Point(2, 1), true);
  EXPECT_TRUE(SameBits(left, ExpectedCapture({6, 4}, {0, 1, 3, 1})));

  cv::Mat right = OpaqueCapture(4, 6);
  Utilities::MakeRowTransparent(right, cv::Point(2, 1), false);
  EXPECT_TRUE(SameBits(right, ExpectedCapture({6, 4}, {2, 1, 4, 1})));
}

TEST(Cropping, ClearsAColumnFromTheStartToEitherEnd) {
  cv::Mat above = OpaqueCapture(6, 4);
  Utilities::MakeColumnTransparent(above, cv::Point(1, 2), true);
  EXPECT_TRUE(SameBits(above, ExpectedCapture({4, 6}, {1, 0, 1, 3})));

  cv::Mat below = OpaqueCapture(6, 4);
  Utilities::MakeColumnTransparent(below, cv::Point(1, 2), false);
  EXPECT_TRUE(SameBits(below, ExpectedCapture({4, 6}, {1, 2, 1, 4})));
}

TEST(Cropping, TreatsStartsOfRunsOutsideTheImageAsALineDoes) {
  for (const int x : {-9, -1, 0, 3, 4, 9}) {
    for (const int y : {-9, -1, 0, 2, 3, 9}) {
      for (const bool towardsOrigin : {true, false}) {
        const cv::Point start(x, y);
        cv::Mat row = NoiseCapture({4, 3}, 1);
        cv::Mat column = row.clone();
        cv::Mat expectedRow = row.clone();
        cv::Mat expectedColumn = row.clone();
        Utilities::MakeRowTransparent(row, start, towardsOrigin);
        Utilities::MakeColumnTransparent(column, start, towardsOrigin);
        Testing::ReferenceMakeRowTransparent(expectedRow, start, towardsOrigin);
        Testing::ReferenceMakeColumnTransparent(expectedColumn, start, towardsOrigin);
        EXPECT_TRUE(SameBits(row, expectedRow)) << start;
        EXPECT_TRUE(SameBits(column, expectedColumn)) << start;
      }
    }
  }
}

struct OutsidePoints {
  std::string name;
  cv::Point first;
  cv::Point second;
};

void PrintTo(const OutsidePoints& points, std::ostream* stream) { *stream << points.name; }

class CroppingAlongAnOutsideLine : public testing::TestWithParam<OutsidePoints> {};

TEST_P(CroppingAlongAnOutsideLine, TellsOfItAndLeavesTheImage) {
  cv::Mat image = NoiseCapture({8, 5}, 2);
  const cv::Mat before = image.clone();
  const StreamCapture errors(std::cerr);
  Utilities::ClipCorner(image, GetParam().first, GetParam().second, true);
  EXPECT_EQ(errors.Text(), "Points given are out of the bounds for the given matrix\n");
  EXPECT_TRUE(SameBits(image, before));
}

INSTANTIATE_TEST_SUITE_P(EachCoordinate, CroppingAlongAnOutsideLine,
                         testing::Values(OutsidePoints{"FirstXNegative", {-1, 0}, {1, 1}},
                                         OutsidePoints{"FirstYNegative", {0, -1}, {1, 1}},
                                         OutsidePoints{"SecondXNegative", {0, 0}, {-1, 1}},
                                         OutsidePoints{"SecondYNegative", {0, 0}, {1, -1}},
                                         OutsidePoints{"FirstXPastEnd", {8, 0}, {1, 1}},
                                         OutsidePoints{"FirstYPastEnd", {0, 5}, {1, 1}},
                                         OutsidePoints{"SecondXPastEnd", {0, 0}, {8, 1}},
                                         OutsidePoints{"SecondYPastEnd", {0, 0}, {1, 5}}),
                         [](const auto& test) { return test.param.name; });

TEST(Cropping, ClearsOneSideOfAVerticalLineAndTheLine) {
  cv::Mat left = OpaqueCapture(3, 6);
  Utilities::ClipCorner(left, {2, 0}, {2, 2}, true);
  EXPECT_TRUE(SameBits(left, ExpectedCapture({6, 3}, {0, 0, 3, 3})));

  cv::Mat right = OpaqueCapture(3, 6);
  Utilities::ClipCorner(right, {2, 0}, {2, 2}, false);
  EXPECT_TRUE(SameBits(right, ExpectedCapture({6, 3}, {2, 0, 4, 3})));
}

TEST(Cropping, ClearsOneSideOfAHorizontalLineAndTheLine) {
  cv::Mat above = OpaqueCapture(6, 3);
  Utilities::ClipCorner(above, {0, 2}, {2, 2}, true);
  EXPECT_TRUE(SameBits(above, ExpectedCapture({3, 6}, {0, 0, 3, 3})));

  cv::Mat below = OpaqueCapture(6, 3);
  Utilities::ClipCorner(below, {0, 2}, {2, 2}, false);
  EXPECT_TRUE(SameBits(below, ExpectedCapture({3, 6}, {0, 2, 3, 4})));
}

TEST(Cropping, TakesTwoEqualPointsAsAVerticalLine) {
  cv::Mat image = OpaqueCapture(3, 6);
  Utilities::ClipCorner(image, {2, 1}, {2, 1}, true);
  EXPECT_TRUE(SameBits(image, ExpectedCapture({6, 3}, {0, 0, 3, 3})));
}

TEST(Cropping, ClearsOnePixelAlongTheBorderThatASlantedLineLeavesThrough) {
  // The line runs from the top left corner to the bottom row's middle and leaves the image there.
  cv::Mat image = OpaqueCapture(4, 9);
  Utilities::ClipCorner(image, {0, 0}, {4, 3}, false);
  for (int x = 4; x < image.cols; ++x) {
    EXPECT_EQ(image.at<cv::Vec4b>(3, x), cv::Vec4b(0, 0, 0, 0)) << x;
    EXPECT_NE(image.at<cv::Vec4b>(2, x), cv::Vec4b(0, 0, 0, 0)) << x;
  }
}

TEST(Cropping, EqualsTheWalkAlongRandomLines) {
  cv::RNG random(4);
  for (int i = 0; i < 400; ++i) {
    const cv::Size size(random.uniform(1, 60), random.uniform(1, 60));
    const cv::Point first(random.uniform(0, size.width), random.uniform(0, size.height));
    const cv::Point second(random.uniform(0, size.width), random.uniform(0, size.height));
    const bool towardsOrigin = random.uniform(0, 2) == 1;
    cv::Mat image = NoiseCapture(size, 7);
    cv::Mat expected = image.clone();
    Utilities::ClipCorner(image, first, second, towardsOrigin);
    Testing::ReferenceClipCorner(expected, first, second, towardsOrigin);
    ASSERT_TRUE(SameBits(image, expected))
        << size << " " << first << " " << second << " " << towardsOrigin;
  }
}

TEST(Cropping, EndsWhereStepsAreTooSmallForSinglePrecision) {
  // Near row 2^20 single precision has steps of 1/8: a slope of 1/100 leads nowhere.
  cv::Mat image((1 << 20) + 8, 101, CV_8UC1, cv::Scalar(9));
  const int row = 1 << 20;
  Utilities::ClipCorner(image, {0, row}, {100, row + 1}, false);
  EXPECT_EQ(image.at<uchar>(row, 50), 0);
  EXPECT_EQ(image.at<uchar>(row - 1, 50), 9);
}

TEST(Cropping, StaysInsideOfColumnsThatSinglePrecisionRoundsUp) {
  // The last column is 2^24 + 3, and the number of columns is the nearest in single precision.
  constexpr int Columns = (1 << 24) + 4;
  cv::Mat image(2, Columns, CV_8UC1, cv::Scalar(9));
  Utilities::ClipCorner(image, {Columns - 1, 0}, {0, 1}, true);
  EXPECT_EQ(image.at<uchar>(0, Columns - 1), 0);
  EXPECT_EQ(image.at<uchar>(1, Columns - 1), 9);
}

TEST(Cropping, WritesIntoTheRegionOfALargerImageOnly) {
  cv::Mat whole = NoiseCapture({40, 30}, 8);
  cv::Mat expected = whole.clone();
  cv::Mat region = whole(cv::Rect(5, 6, 20, 11));
  cv::Mat expectedRegion = expected(cv::Rect(5, 6, 20, 11));
  Utilities::ClipCorner(region, {1, 9}, {17, 2}, true);
  Testing::ReferenceClipCorner(expectedRegion, {1, 9}, {17, 2}, true);
  EXPECT_TRUE(SameBits(whole, expected));
}

struct StraightCrop {
  std::string name;
  cv::Size size;
  Translation translation;
  cv::Rect transparent;
};

void PrintTo(const StraightCrop& crop, std::ostream* stream) { *stream << crop.name; }

class CroppingAfterAStraightScroll : public testing::TestWithParam<StraightCrop> {};

TEST_P(CroppingAfterAStraightScroll, ClearsHalfOfTheOverlap) {
  cv::Mat capture = OpaqueCapture(GetParam().size.height, GetParam().size.width);
  Utilities::CropCaptureImage(capture, GetParam().translation, {{5, 6}, GetParam().size});
  EXPECT_TRUE(SameBits(capture, ExpectedCapture(GetParam().size, GetParam().transparent)));
}

INSTANTIATE_TEST_SUITE_P(
    Seams, CroppingAfterAStraightScroll,
    testing::Values(StraightCrop{"ContentMovedUp", {50, 100}, {-40, 0}, {0, 0, 50, 31}},
                    StraightCrop{"ContentMovedDown", {50, 100}, {40, 0}, {0, 70, 50, 30}},
                    StraightCrop{"OddOverlapTruncates", {50, 101}, {-40, 0}, {0, 0, 50, 31}},
                    StraightCrop{"OneRowOfOverlap", {50, 100}, {99, 0}, {0, 99, 50, 1}},
                    StraightCrop{"ContentMovedLeft", {100, 50}, {0, -40}, {0, 0, 31, 50}},
                    StraightCrop{"ContentMovedRight", {100, 50}, {0, 40}, {70, 0, 30, 50}},
                    StraightCrop{"NoMotionClearsTheFirstHalf", {100, 50}, {0, 0}, {0, 0, 51, 50}}),
    [](const auto& test) { return test.param.name; });

TEST(Cropping, EqualsTheWalkForRandomSizesAndTranslations) {
  cv::RNG random(5);
  for (int i = 0; i < 800; ++i) {
    const cv::Size size(random.uniform(2, 90), random.uniform(2, 90));
    const Translation translation(random.uniform(1 - size.height, size.height),
                                  random.uniform(1 - size.width, size.width));
    cv::Mat capture = NoiseCapture(size, 9);
    cv::Mat expected = capture.clone();
    Utilities::CropCaptureImage(capture, translation, {{}, size});
    Testing::ReferenceCropCaptureImage(expected, translation, {{}, size});
    ASSERT_TRUE(SameBits(capture, expected)) << size << " " << translation;
  }
}

class CroppingWithoutOverlap : public testing::TestWithParam<Translation> {};

TEST_P(CroppingWithoutOverlap, TellsOfItAndLeavesTheCapture) {
  cv::Mat capture = NoiseCapture({20, 10}, 10);
  const cv::Mat before = capture.clone();
  const StreamCapture errors(std::cerr);
  Utilities::CropCaptureImage(capture, GetParam(), {0, 0, 20, 10});
  EXPECT_EQ(errors.Text(), "Points given are out of the bounds for the given matrix\n");
  EXPECT_TRUE(SameBits(capture, before));
}

INSTANTIATE_TEST_SUITE_P(
    TranslationsPastTheCapture, CroppingWithoutOverlap,
    testing::Values(Translation(12, 0), Translation(-12, 0), Translation(0, 22),
                    Translation(0, -22), Translation(-11, -3), Translation(3, -21),
                    Translation(std::numeric_limits<int>::min(), 0),
                    Translation(std::numeric_limits<int>::max(), 0),
                    Translation(0, std::numeric_limits<int>::min()),
                    Translation(std::numeric_limits<int>::min(), std::numeric_limits<int>::min())));

}  // namespace
}  // namespace ScrollingCapture
