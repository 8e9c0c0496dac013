#include <gmock/gmock.h>
#include <testkit/pages/ScrolledCaptures.h>
#include <testkit/pages/ScrolledWindow.h>

#include <VelScrollingCapture/stitching/StitcherFactory.h>
#include <VelScrollingCapture/storage/BasicImageProvider.h>

#include "Handles.h"

namespace ScrollingCapture {
namespace {

using Testing::Owned;
using Testing::SameBits;

Owned<vel_picture> Stitch(vel_stitcher* stitcher, const std::vector<cv::Mat>& captures) {
  for (const cv::Mat& capture : captures) {
    const vel_source_image image = Testing::SourceOf(capture);
    EXPECT_EQ(vel_stitcher_add(stitcher, &image), VEL_OK);
  }
  vel_picture* picture = nullptr;
  EXPECT_EQ(vel_stitcher_stitch(stitcher, nullptr, nullptr, &picture), VEL_OK);
  return Owned<vel_picture>(picture);
}

TEST(StitcherInC, GivesEveryPixelAndMotionOfTheBasicStitcher) {
  const std::vector<cv::Mat> captures = Testing::ScrolledCaptures(4);
  const auto stitcher = Testing::MakeStitcher();
  const auto picture = Stitch(stitcher.get(), captures);

  BasicImageProvider provider;
  for (const cv::Mat& capture : captures) {
    cv::Mat copy = capture.clone();
    provider.Add(copy);
  }
  const auto expected = StitcherFactory::CreateBasicStitcher(Both, false, 1);
  cv::Mat result;
  ASSERT_TRUE(expected->Stitch(provider, result, nullptr, 0, 100, false));
  EXPECT_TRUE(SameBits(Testing::Whole(picture.get()), result));
  size_t count = 0;
  EXPECT_EQ(vel_stitcher_motion_count(stitcher.get(), &count), VEL_OK);
  ASSERT_EQ(count, 3U);
  for (size_t i = 0; i < count; ++i) {
    vel_motion motion = {0, 0};
    EXPECT_EQ(vel_stitcher_motion(stitcher.get(), i, &motion), VEL_OK);
    EXPECT_EQ(Translation(motion.rows, motion.columns), expected->GetTranslations()[i]);
  }
}

TEST(StitcherInC, LaysBordersAroundTheResult) {
  const Testing::ScrolledWindow window(Testing::ContentBox, {0, 40});
  vel_stitcher_settings settings;
  vel_stitcher_settings_init(&settings, sizeof settings);
  settings.find_borders = 1;
  const auto stitcher = Testing::MakeStitcher(&settings);
  const auto picture = Stitch(stitcher.get(), window.captures);
  EXPECT_TRUE(SameBits(Testing::Whole(picture.get()), window.BorderedPage()));
}

TEST(StitcherInC, LeavesTheCallersCapturesAsTheyWere) {
  const std::vector<cv::Mat> captures = Testing::ScrolledCaptures(3);
  const auto stitcher = Testing::MakeStitcher();
  const auto first = Stitch(stitcher.get(), captures);
  const auto second = Stitch(stitcher.get(), captures);
  EXPECT_TRUE(SameBits(Testing::Whole(first.get()), Testing::ScrolledPage(3)));
  EXPECT_TRUE(SameBits(Testing::Whole(second.get()), Testing::ScrolledPage(3)));
}

TEST(StitcherInC, RefusesACaptureOfAnotherSize) {
  const auto stitcher = Testing::MakeStitcher();
  const cv::Mat capture = Testing::NoiseCapture({40, 40}, 1);
  const cv::Mat smaller = capture.rowRange(0, 39).clone();
  const vel_source_image first = Testing::SourceOf(capture);
  const vel_source_image second = Testing::SourceOf(smaller);
  EXPECT_EQ(vel_stitcher_add(stitcher.get(), &first), VEL_OK);
  EXPECT_EQ(vel_stitcher_add(stitcher.get(), &second), VEL_INVALID_ARGUMENT);
}

TEST(StitcherInC, HasNothingToStitchWithoutCaptures) {
  const auto stitcher = Testing::MakeStitcher();
  vel_picture* picture = nullptr;
  EXPECT_EQ(vel_stitcher_stitch(stitcher.get(), nullptr, nullptr, &picture), VEL_NO_CAPTURES);
  EXPECT_EQ(picture, nullptr);
}

TEST(StitcherInC, StopsWhenAsked) {
  const auto stitcher = Testing::MakeStitcher();
  for (const cv::Mat& capture : Testing::ScrolledCaptures(4)) {
    const vel_source_image image = Testing::SourceOf(capture);
    ASSERT_EQ(vel_stitcher_add(stitcher.get(), &image), VEL_OK);
  }
  const vel_progress stop = [](int32_t /*percent*/, void* /*user*/) -> int32_t { return 1; };
  vel_picture* picture = nullptr;
  EXPECT_EQ(vel_stitcher_stitch(stitcher.get(), stop, nullptr, &picture), VEL_CANCELLED);
  EXPECT_EQ(picture, nullptr);
}

}  // namespace
}  // namespace ScrollingCapture
