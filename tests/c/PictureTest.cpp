#include <gmock/gmock.h>
#include <testkit/memory/PeakMemory.h>

#include "Handles.h"

namespace ScrollingCapture {
namespace {

using Testing::Owned;
using Testing::SameBits;

class PictureInC : public testing::Test {
 protected:
  const cv::Mat page = Testing::NoiseCapture({120, 400}, 3);
  const Owned<vel_picture> picture = [this] {
    const auto session = Testing::MakeSession();
    Testing::AddAll(session.get(), Testing::CapturesOf(page, 100, 50));
    return Testing::PartOf(Testing::Stitch(session.get()).get());
  }();
};

TEST_F(PictureInC, GivesAnyArea) {
  for (const cv::Rect& area :
       {cv::Rect(0, 0, 120, 1), {0, 399, 120, 1}, {119, 0, 1, 400}, {17, 33, 50, 200}}) {
    cv::Mat pixels(area.size(), CV_8UC4);
    const vel_target_image image = Testing::TargetOf(pixels);
    EXPECT_EQ(vel_picture_read(picture.get(), area.x, area.y, &image), VEL_OK);
    EXPECT_TRUE(SameBits(pixels, page(area))) << area;
  }
}

TEST_F(PictureInC, IsReadWithoutTheMemoryOfTheWhole) {
  const auto session = Testing::MakeSession();
  Testing::Add(session.get(), Testing::NoiseCapture({1024, 1536}, 2));
  const auto large = Testing::PartOf(Testing::Stitch(session.get()).get());
  cv::Mat pixels(1536, 1024, CV_8UC4);
  const vel_target_image image = Testing::TargetOf(pixels, VEL_BGRA, VEL_STRAIGHT);
  const Testing::PeakMemory memory;
  ASSERT_EQ(vel_picture_read(large.get(), 0, 0, &image), VEL_OK);
  EXPECT_LE(memory.MiB(), 1);
}

TEST_F(PictureInC, RefusesAnAreaThatReachesOutside) {
  for (const cv::Rect& area : {cv::Rect(-1, 0, 1, 1),
                               {0, -1, 1, 1},
                               {0, 0, 121, 1},
                               {0, 0, 1, 401},
                               {120, 0, 1, 1},
                               {0, 400, 1, 1},
                               {119, 399, 2, 1}}) {
    cv::Mat pixels(area.size(), CV_8UC4, cv::Scalar::all(7));
    const vel_target_image image = Testing::TargetOf(pixels);
    EXPECT_EQ(vel_picture_read(picture.get(), area.x, area.y, &image), VEL_INVALID_ARGUMENT);
    EXPECT_EQ(cv::norm(pixels, cv::Mat(pixels.size(), CV_8UC4, cv::Scalar::all(7)), cv::NORM_INF),
              0);
  }
  cv::Mat pixels(1, 1, CV_8UC4);
  const vel_target_image image = Testing::TargetOf(pixels);
  EXPECT_EQ(vel_picture_read(picture.get(), INT32_MAX, INT32_MIN, &image), VEL_INVALID_ARGUMENT);
}

TEST_F(PictureInC, IsWhiteInGreyWhereNoCaptureShowsAnything) {
  const auto session = Testing::MakeSession();
  const cv::Mat wide = Testing::NoiseCapture({200, 200}, 8);
  Testing::AddAll(session.get(), {wide(cv::Rect(0, 0, 100, 100)).clone(),
                                  wide(cv::Rect(60, 60, 100, 100)).clone()});
  const auto corner = Testing::PartOf(Testing::Stitch(session.get()).get());
  ASSERT_EQ(Testing::SizeOf(corner.get()), cv::Size(160, 160));
  int32_t opaque = -1;
  EXPECT_EQ(vel_picture_is_opaque(corner.get(), &opaque), VEL_OK);
  EXPECT_EQ(opaque, 0);
  cv::Mat grey(10, 10, CV_8UC1);
  const vel_target_image image = Testing::TargetOf(grey, VEL_GREY);
  EXPECT_EQ(vel_picture_read(corner.get(), 150, 0, &image), VEL_OK);
  EXPECT_EQ(cv::countNonZero(grey == 255), 100);
}

TEST_F(PictureInC, CutsItsMessageBetweenCharacters) {
  EXPECT_EQ(vel_picture_write(picture.get(), "/nowhere/\u00e4\u00e4\u00e4.png", nullptr, nullptr,
                              nullptr),
            VEL_FILE_UNUSABLE);
  const std::string whole = Testing::MessageOf(picture.get());
  const size_t umlaut = whole.find("\u00e4");
  ASSERT_NE(umlaut, std::string::npos);
  std::string cut(umlaut + 2, 'x');  // room for half of it, and the zero
  EXPECT_EQ(vel_picture_message(picture.get(), cut.data(), cut.size()), VEL_OK);
  EXPECT_EQ(cut.c_str(), whole.substr(0, umlaut));
}

}  // namespace
}  // namespace ScrollingCapture
