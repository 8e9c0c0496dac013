#include <stdexcept>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <testkit/MatrixTesting.h>
#include <testkit/RecordingListener.h>
#include <testkit/pages/DrawnScene.h>

namespace ScrollingCapture {
namespace {

using Testing::Blue;
using Testing::Compose;
using Testing::DifferentPixels;
using Testing::DrawnScene;
using Testing::ScrolledDown;
using Testing::TextPage;

const cv::Size Window(260, 200);

/// A header, a button that is there at first, and a part that changes by itself.
DrawnScene BusyScene() {
  DrawnScene scene(TextPage({260, 600}, 1), Window, ScrolledDown());
  scene.With([](int capture, cv::Mat& window) {
    window(cv::Rect(0, 0, 260, 26)).setTo(Blue);
    if (capture < 3) {
      window(cv::Rect(180, 150, 60, 30)).setTo(Blue);
    }
    const cv::Rect own =
        cv::Rect(60, 190 - ScrolledDown()[static_cast<size_t>(capture)].row, 90, 70) &
        cv::Rect({}, window.size());
    if (!own.empty()) {
      Testing::NoiseCapture(own.size(), static_cast<std::uint64_t>(capture + 1))
          .copyTo(window(own));
    }
  });
  return scene;
}

TEST(MosaicTest, SizeIsTheBoundingBoxOfTheCaptures) {
  BasicImageProvider provider;
  const DrawnScene scene(TextPage({600, 600}, 1), Window, {{50, 20}, {10, 90}});
  Testing::AddAll(provider, scene.Captures());
  const Mosaic mosaic(provider, scene.Places());
  EXPECT_EQ(cv::Size(330, 240), mosaic.Size());
  EXPECT_EQ(cv::Rect(0, 40, 260, 200), mosaic.AreaOf(0));
  EXPECT_EQ(cv::Rect(70, 0, 260, 200), mosaic.AreaOf(1));
}

TEST(MosaicTest, NoCapturesMakeAnEmptyPicture) {
  BasicImageProvider provider;
  const Mosaic mosaic(provider, {});
  EXPECT_EQ(cv::Size(), mosaic.Size());
}

TEST(MosaicTest, SingleCaptureIsThePicture) {
  const cv::Mat capture = Testing::NoiseCapture({30, 20}, 1);
  EXPECT_TRUE(Testing::SameBits(capture, Compose({capture}, {{7, -3}})));
}

class MosaicTypeTest : public testing::TestWithParam<int> {};

TEST_P(MosaicTypeTest, HeaderOfSuchCapturesAppearsOnce) {
  const auto convert = [](const cv::Mat& pixels) {
    const int channels = CV_MAT_CN(GetParam());
    cv::Mat converted;
    if (channels == 4) {
      return pixels;
    }
    cv::cvtColor(pixels, converted, channels == 1 ? cv::COLOR_RGBA2GRAY : cv::COLOR_RGBA2RGB);
    return converted;
  };
  const auto drawHeader = [](cv::Mat& picture) { picture(cv::Rect(0, 0, 260, 26)).setTo(Blue); };
  DrawnScene scene(TextPage({260, 600}, 1), Window, ScrolledDown());
  scene.With([&](int, cv::Mat& window) { drawHeader(window); });
  std::vector<cv::Mat> captures;
  for (const cv::Mat& capture : scene.Captures()) {
    captures.push_back(convert(capture));
  }
  cv::Mat expected = scene.Content();
  drawHeader(expected);
  EXPECT_EQ(0, DifferentPixels(Compose(captures, scene.Places()), convert(expected)));
}

INSTANTIATE_TEST_SUITE_P(Types, MosaicTypeTest, testing::Values(CV_8UC1, CV_8UC3, CV_8UC4));

TEST(MosaicTest, TilesAreEqualToTheWhole) {
  BasicImageProvider provider;
  const DrawnScene scene = BusyScene();
  Testing::AddAll(provider, scene.Captures());
  const Mosaic mosaic(provider, scene.Places());
  cv::Mat whole;
  mosaic.Render({{}, mosaic.Size()}, whole);
  const cv::Rect picture({}, mosaic.Size());
  cv::Mat tiled(mosaic.Size(), CV_8UC4);
  for (int row = 0; row < picture.height; row += 37) {
    for (int column = 0; column < picture.width; column += 53) {
      const cv::Rect tile = cv::Rect(column, row, 53, 37) & picture;
      cv::Mat pixels;
      mosaic.Render(tile, pixels);
      pixels.copyTo(tiled(tile));
    }
  }
  EXPECT_EQ(0, DifferentPixels(tiled, whole));
}

TEST(MosaicTest, WhatLiesOutsideOfThePictureIsTransparent) {
  BasicImageProvider provider;
  cv::Mat capture = Testing::NoiseCapture({30, 20}, 1);
  provider.Add(capture);
  const Mosaic mosaic(provider, {{0, 0}});
  cv::Mat pixels;
  mosaic.Render({-10, -5, 50, 40}, pixels);
  cv::Mat expected(40, 50, CV_8UC4, cv::Scalar());
  capture.copyTo(expected(cv::Rect(10, 5, 30, 20)));
  EXPECT_TRUE(Testing::SameBits(expected, pixels));
}

TEST(MosaicTest, RenderingKeepsABufferThatFits) {
  BasicImageProvider provider;
  cv::Mat capture = Testing::NoiseCapture({30, 20}, 1);
  provider.Add(capture);
  cv::Mat pixels(20, 30, CV_8UC4);
  const std::uint8_t* const buffer = pixels.data;
  Mosaic(provider, {{0, 0}}).Render({0, 0, 30, 20}, pixels);
  EXPECT_EQ(buffer, pixels.data);
}

TEST(MosaicTest, AnyNumberOfThreadsGivesTheSamePicture) {
  const cv::Mat one = Compose(BusyScene());
  for (const unsigned threads : {0U, 2U, 7U}) {
    MosaicSettings settings;
    settings.threadCount = threads;
    EXPECT_EQ(0, DifferentPixels(one, Compose(BusyScene(), settings)));
  }
}

TEST(MosaicTest, CapturesStayAsTheyWere) {
  BasicImageProvider provider;
  const DrawnScene scene = BusyScene();
  const std::vector<cv::Mat> captures = scene.Captures();
  Testing::AddAll(provider, captures);
  const Mosaic mosaic(provider, scene.Places());
  cv::Mat picture;
  mosaic.Render({{}, mosaic.Size()}, picture);
  picture.setTo(cv::Scalar());
  for (int i = 0; i < static_cast<int>(captures.size()); ++i) {
    EXPECT_TRUE(Testing::SameBits(scene.CaptureAt(i), captures[static_cast<size_t>(i)]));
  }
}

TEST(MosaicTest, TellsWhichCaptureShowsAPixel) {
  BasicImageProvider provider;
  const DrawnScene scene = BusyScene();
  const std::vector<cv::Mat> captures = scene.Captures();
  Testing::AddAll(provider, captures);
  const Mosaic mosaic(provider, scene.Places());
  cv::Mat picture;
  mosaic.Render({{}, mosaic.Size()}, picture);
  for (int row = 0; row < picture.rows; row += 7) {
    for (int column = 0; column < picture.cols; column += 5) {
      const auto shown = mosaic.CaptureAt({column, row});
      ASSERT_TRUE(shown.has_value());
      const cv::Point inCapture = cv::Point(column, row) - mosaic.AreaOf(*shown).tl();
      EXPECT_EQ(picture.at<cv::Vec4b>(row, column), captures[*shown].at<cv::Vec4b>(inCapture));
    }
  }
  EXPECT_FALSE(mosaic.CaptureAt({-1, 0}).has_value());
  EXPECT_FALSE(mosaic.CaptureAt({0, picture.rows}).has_value());
}

TEST(MosaicTest, PictureMayHaveAsManyRowsAsAnIntCanTell) {
  constexpr int Rows = 2147483647;
  BasicImageProvider provider;
  cv::Mat first = Testing::NoiseCapture({30, 20}, 1);
  cv::Mat last = Testing::NoiseCapture({30, 20}, 2);
  provider.Add(first);
  provider.Add(last);
  const Mosaic mosaic(provider, {{0, 0}, {Rows - 20, 0}});
  EXPECT_EQ(cv::Size(30, Rows), mosaic.Size());
  cv::Mat pixels;
  mosaic.Render({0, Rows - 20, 30, 20}, pixels);
  EXPECT_TRUE(Testing::SameBits(last, pixels));
}

TEST(MosaicTest, PictureThatIsTooLargeIsRefused) {
  BasicImageProvider provider;
  cv::Mat capture = Testing::NoiseCapture({30, 20}, 1);
  provider.Add(capture);
  provider.Add(capture);
  EXPECT_THROW(Mosaic(provider, {{-2147483647, 0}, {2147483647, 0}}), std::length_error);
}

TEST(MosaicTest, WrongNumberOfPlacesIsRefused) {
  BasicImageProvider provider;
  cv::Mat capture = Testing::NoiseCapture({30, 20}, 1);
  provider.Add(capture);
  EXPECT_THROW(Mosaic(provider, {}), std::invalid_argument);
}

TEST(MosaicTest, CapturesOfDifferentSizesAreRefused) {
  BasicImageProvider provider;
  cv::Mat first = Testing::NoiseCapture({30, 20}, 1);
  cv::Mat second = Testing::NoiseCapture({30, 19}, 1);
  provider.Add(first);
  provider.Add(second);
  EXPECT_THROW(Mosaic(provider, {{0, 0}, {5, 0}}), std::invalid_argument);
}

TEST(MosaicTest, CapturesOfMoreThanEightBitsAreRefused) {
  BasicImageProvider provider;
  cv::Mat capture(20, 30, CV_16UC1, cv::Scalar(0));
  provider.Add(capture);
  EXPECT_THROW(Mosaic(provider, {{0, 0}}), std::invalid_argument);
}

TEST(MosaicTest, AnalysisTellsProgressWithinItsRange) {
  BasicImageProvider provider;
  const DrawnScene scene = BusyScene();
  Testing::AddAll(provider, scene.Captures());
  Testing::RecordingListener listener;
  ASSERT_NE(nullptr, Mosaic::Analyse(provider, scene.Places(), {}, &listener, 20, 60));
  ASSERT_GE(listener.calls.size(), 4U);
  EXPECT_EQ("progress 20", listener.calls.front());
  EXPECT_EQ("progress 60", listener.calls.back());
  for (size_t i = 1; i < listener.calls.size(); ++i) {
    EXPECT_LE(std::stoi(listener.calls[i - 1].substr(9)), std::stoi(listener.calls[i].substr(9)));
  }
}

TEST(MosaicTest, EveryProgressCallCanCancelTheAnalysis) {
  BasicImageProvider provider;
  const DrawnScene scene = BusyScene();
  Testing::AddAll(provider, scene.Captures());
  Testing::RecordingListener all;
  Mosaic::Analyse(provider, scene.Places(), {}, &all, 0, 100);
  for (size_t accepted = 0; accepted < all.calls.size(); ++accepted) {
    Testing::RecordingListener listener(accepted);
    EXPECT_EQ(nullptr, Mosaic::Analyse(provider, scene.Places(), {}, &listener, 0, 100));
    EXPECT_EQ(accepted + 2, listener.calls.size());
    EXPECT_EQ("error 4 false", listener.calls.back());
  }
}

}  // namespace
}  // namespace ScrollingCapture
