#include <memory>

#include <gtest/gtest.h>
#include <testkit/MatrixTesting.h>
#include <testkit/RecordingListener.h>

#include <VelScrollingCapture/stitching/BasicStitcher.h>
#include <VelScrollingCapture/stitching/StitcherFactory.h>
#include <VelScrollingCapture/storage/BasicImageProvider.h>

namespace ScrollingCapture {
namespace {

/// Stitches the first 90 rows and columns of a noise picture with a block further right and down.
std::vector<Translation> TranslationsFoundBy(IStitcher& stitcher, const cv::Point& scroll) {
  const cv::Mat page = Testing::NoiseCapture({150, 150}, 3);
  cv::Mat first = page(cv::Rect(0, 0, 90, 90)).clone();
  cv::Mat second = page(cv::Rect(scroll, cv::Size(90, 90))).clone();
  BasicImageProvider captures;
  captures.Add(first);
  captures.Add(second);
  cv::Mat result;
  EXPECT_TRUE(stitcher.Stitch(captures, result, nullptr, 0, 100, true));
  return stitcher.GetTranslations();
}

TEST(StitcherFactory, GivesTheOnlyReferenceToABasicStitcher) {
  const auto stitcher = StitcherFactory::CreateBasicStitcher(ScrollOrientation::Both, false, 1);
  EXPECT_EQ(stitcher.use_count(), 1);
  EXPECT_NE(dynamic_cast<BasicStitcher*>(stitcher.get()), nullptr);
}

TEST(StitcherFactory, PassesTheOrientationOn) {
  const auto found = [](ScrollOrientation orientation) {
    return TranslationsFoundBy(*StitcherFactory::CreateBasicStitcher(orientation, false, 1),
                               {12, 20});
  };
  EXPECT_EQ(found(ScrollOrientation::Both), std::vector<Translation>({{-20, -12}}));
  EXPECT_EQ(found(ScrollOrientation::Vertical).front().GetCols(), 0);
  EXPECT_EQ(found(ScrollOrientation::Horizontal).front().GetRows(), 0);
  EXPECT_EQ(found(static_cast<ScrollOrientation>(3)), std::vector<Translation>({{0, 0}}));
}

TEST(StitcherFactory, JoinsExactlyAlongTheAxesAskedFor) {
  const auto found = [](ScrollOrientation orientation, const cv::Point& scroll) {
    return TranslationsFoundBy(
        *StitcherFactory::CreateStitcherWithExactJoins(orientation, false, 1), scroll);
  };
  EXPECT_EQ(found(ScrollOrientation::Both, {12, 20}), std::vector<Translation>({{-20, -12}}));
  EXPECT_EQ(found(ScrollOrientation::Vertical, {0, 20}), std::vector<Translation>({{-20, 0}}));
  EXPECT_EQ(found(ScrollOrientation::Horizontal, {0, 20}), std::vector<Translation>({{0, 0}}));
}

}  // namespace
}  // namespace ScrollingCapture
