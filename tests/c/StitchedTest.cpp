#include <gmock/gmock.h>

#include "Handles.h"

namespace ScrollingCapture {
namespace {

using Testing::Owned;

/// Two parts, since captures are missing in between.
class StitchedInC : public testing::Test {
 protected:
  const Owned<vel_stitched> stitched = [] {
    const cv::Mat page = Testing::NoiseCapture({100, 900}, 5);
    const auto session = Testing::MakeSession();
    for (const int row : {0, 40, 500, 540}) {
      Testing::Add(session.get(), page.rowRange(row, row + 100).clone());
    }
    return Testing::Stitch(session.get());
  }();
};

TEST_F(StitchedInC, HasAPartForEachGap) {
  size_t parts = 0;
  EXPECT_EQ(vel_stitched_part_count(stitched.get(), &parts), VEL_OK);
  ASSERT_EQ(parts, 2U);
  EXPECT_EQ(Testing::SizeOf(Testing::PartOf(stitched.get(), 1).get()), cv::Size(100, 140));
  vel_placement placement;
  vel_placement_init(&placement, sizeof placement);
  EXPECT_EQ(vel_stitched_capture(stitched.get(), 3, &placement), VEL_OK);
  EXPECT_EQ(placement.part, 1U);
  EXPECT_EQ(placement.row, 40);
  EXPECT_EQ(placement.verdict, VEL_JOIN_PROVEN);
}

TEST_F(StitchedInC, RefusesWhatItDoesNotHave) {
  vel_picture* picture = nullptr;
  EXPECT_EQ(vel_stitched_part(stitched.get(), 2, &picture), VEL_INVALID_ARGUMENT);
  EXPECT_EQ(picture, nullptr);
  vel_placement placement;
  vel_placement_init(&placement, sizeof placement);
  EXPECT_EQ(vel_stitched_capture(stitched.get(), 4, &placement), VEL_INVALID_ARGUMENT);
  EXPECT_EQ(vel_stitched_capture(stitched.get(), ~size_t{0}, &placement), VEL_INVALID_ARGUMENT);
  vel_motion motion = {0, 0};
  EXPECT_EQ(vel_stitched_alternative(stitched.get(), 1, 0, &motion), VEL_INVALID_ARGUMENT);
  char message[VEL_MESSAGE_SIZE] = "";
  EXPECT_EQ(vel_stitched_message(stitched.get(), message, sizeof message), VEL_OK);
  EXPECT_STREQ(message, "index is 0, but there are 0");
}

}  // namespace
}  // namespace ScrollingCapture
