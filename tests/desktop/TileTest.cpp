#include <desktop/picture/Tile.h>
#include <desktop/support/Pixels.h>
#include <gtest/gtest.h>
#include <testkit/MatrixTesting.h>

#include "GivenPicture.h"

namespace ScrollingCapture::Desktop {
namespace {

bool Always() { return true; }

TEST(TileTest, EndsWhereThePictureEnds) {
  EXPECT_EQ(AreaOf({0, 1, 2}, {600, 1100}), cv::Rect(512, 1024, 88, 76));
  EXPECT_EQ(AreaOf({1, 0, 0}, {600, 1100}), cv::Rect(0, 0, 600, 1024));
}

TEST(TileTest, HasAsManyPixelsAsAreShownOrUpToTwiceAsMany) {
  EXPECT_EQ(LevelFor(4), 0);
  EXPECT_EQ(LevelFor(1), 0);
  EXPECT_EQ(LevelFor(0.51), 0);
  EXPECT_EQ(LevelFor(0.5), 1);
  EXPECT_EQ(LevelFor(0.2), 2);
}

TEST(TileTest, ShowsThePixelsThemselvesAtFullSize) {
  const cv::Mat pixels = Testing::NoiseCapture({600, 700}, 3);
  const QImage tile = DrawTile(*RecordedFrom(pixels), {0, 1, 1}, Always);
  EXPECT_EQ(tile, ImageOf(pixels(cv::Rect(512, 512, 88, 188))));
}

TEST(TileTest, ShowsMeansOfPixelsInSmall) {
  cv::Mat pixels(4, 6, CV_8UC4, cv::Scalar(0, 0, 0, 255));
  pixels.col(1).setTo(cv::Scalar(200, 100, 40, 255));
  const QImage tile = DrawTile(*RecordedFrom(pixels), {1, 0, 0}, Always);
  ASSERT_EQ(tile.size(), QSize(3, 2));
  EXPECT_EQ(tile.pixelColor(0, 1), QColor(100, 50, 20));
  EXPECT_EQ(tile.pixelColor(1, 1), QColor(0, 0, 0));
}

TEST(TileTest, LosesNoPixelAtTheEdge) {
  cv::Mat pixels(3, 3, CV_8UC4, cv::Scalar(0, 0, 0, 255));
  pixels.at<cv::Vec4b>(2, 2) = {255, 255, 255, 255};
  const QImage tile = DrawTile(*RecordedFrom(pixels), {1, 0, 0}, Always);
  ASSERT_EQ(tile.size(), QSize(2, 2));
  EXPECT_GT(tile.pixelColor(1, 1).red(), 0);
}

TEST(TileTest, OfATallPictureIsDrawnInLittleMemory) {
  const auto endless = std::make_shared<EndlessPicture>();
  constexpr int Level = 8;
  const QImage tile = DrawTile(*RecordedAs(endless), {Level, 0, 0}, Always);
  constexpr int StripeMiddle = EndlessPicture::StripeRows / 2;
  EXPECT_EQ(tile.pixelColor(0, StripeMiddle >> Level), QColor(Qt::black));
  EXPECT_EQ(tile.pixelColor(0, 3 * StripeMiddle >> Level), QColor(Qt::white));
  constexpr std::int64_t MiBOfPixels = 1 << 18;
  EXPECT_LE(endless->largestArea, 8 * MiBOfPixels);
}

TEST(TileTest, IsGivenUpWhenNobodyWantsItAnyMore) {
  const auto endless = std::make_shared<EndlessPicture>();
  EXPECT_TRUE(DrawTile(*RecordedAs(endless), {8, 0, 0}, [] { return false; }).isNull());
}

}  // namespace
}  // namespace ScrollingCapture::Desktop
