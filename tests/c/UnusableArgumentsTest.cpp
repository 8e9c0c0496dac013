// Every function with NULL for everything.

#include <functional>

#include <gtest/gtest.h>

#include "Handles.h"

namespace ScrollingCapture {
namespace {

struct NullCall {
  const char* name;
  std::function<vel_result()> call;
};

class WithNullHandle : public testing::TestWithParam<NullCall> {};

TEST_P(WithNullHandle, AnswersInvalidArgument) {
  EXPECT_EQ(GetParam().call(), VEL_INVALID_ARGUMENT);
}

INSTANTIATE_TEST_SUITE_P(
    , WithNullHandle,
    testing::Values(
        NullCall{"session_create", [] { return vel_session_create(nullptr, nullptr, nullptr, 0); }},
        NullCall{"session_add", [] { return vel_session_add(nullptr, nullptr, nullptr, nullptr); }},
        NullCall{"session_add_file",
                 [] { return vel_session_add_file(nullptr, nullptr, nullptr, nullptr); }},
        NullCall{"session_alternative",
                 [] { return vel_session_alternative(nullptr, 0, nullptr); }},
        NullCall{"session_exceeds_memory_limit",
                 [] { return vel_session_exceeds_memory_limit(nullptr, nullptr); }},
        NullCall{"session_preview", [] { return vel_session_preview(nullptr, nullptr); }},
        NullCall{"session_stitch",
                 [] { return vel_session_stitch(nullptr, nullptr, nullptr, nullptr); }},
        NullCall{"session_message", [] { return vel_session_message(nullptr, nullptr, 0); }},
        NullCall{"stitched_part_count", [] { return vel_stitched_part_count(nullptr, nullptr); }},
        NullCall{"stitched_part", [] { return vel_stitched_part(nullptr, 0, nullptr); }},
        NullCall{"stitched_capture_count",
                 [] { return vel_stitched_capture_count(nullptr, nullptr); }},
        NullCall{"stitched_capture", [] { return vel_stitched_capture(nullptr, 0, nullptr); }},
        NullCall{"stitched_alternative",
                 [] { return vel_stitched_alternative(nullptr, 0, 0, nullptr); }},
        NullCall{"stitched_borders", [] { return vel_stitched_borders(nullptr, nullptr); }},
        NullCall{"stitched_write",
                 [] { return vel_stitched_write(nullptr, nullptr, nullptr, nullptr, nullptr); }},
        NullCall{"stitched_message", [] { return vel_stitched_message(nullptr, nullptr, 0); }},
        NullCall{"picture_size", [] { return vel_picture_size(nullptr, nullptr, nullptr); }},
        NullCall{"picture_is_opaque", [] { return vel_picture_is_opaque(nullptr, nullptr); }},
        NullCall{"picture_read", [] { return vel_picture_read(nullptr, 0, 0, nullptr); }},
        NullCall{"picture_write",
                 [] { return vel_picture_write(nullptr, nullptr, nullptr, nullptr, nullptr); }},
        NullCall{"picture_message", [] { return vel_picture_message(nullptr, nullptr, 0); }},
        NullCall{"stitcher_create",
                 [] { return vel_stitcher_create(nullptr, nullptr, nullptr, 0); }},
        NullCall{"stitcher_add", [] { return vel_stitcher_add(nullptr, nullptr); }},
        NullCall{"stitcher_add_file", [] { return vel_stitcher_add_file(nullptr, nullptr); }},
        NullCall{"stitcher_stitch",
                 [] { return vel_stitcher_stitch(nullptr, nullptr, nullptr, nullptr); }},
        NullCall{"stitcher_motion_count",
                 [] { return vel_stitcher_motion_count(nullptr, nullptr); }},
        NullCall{"stitcher_motion", [] { return vel_stitcher_motion(nullptr, 0, nullptr); }},
        NullCall{"stitcher_message", [] { return vel_stitcher_message(nullptr, nullptr, 0); }}),
    [](const auto& test) { return test.param.name; });

class WithNullElsewhere : public testing::Test {
 protected:
  WithNullElsewhere() {
    Testing::Add(session.get(), capture);
    stitched = Testing::Stitch(session.get());
    picture = Testing::PartOf(stitched.get());
  }

  const cv::Mat capture = Testing::NoiseCapture({40, 40}, 1);
  const Testing::Owned<vel_session> session = Testing::MakeSession();
  const Testing::Owned<vel_stitcher> stitcher = Testing::MakeStitcher();
  Testing::Owned<vel_stitched> stitched;
  Testing::Owned<vel_picture> picture;
};

TEST_F(WithNullElsewhere, SessionsAnswerInvalidArgument) {
  vel_session* const handle = session.get();
  EXPECT_EQ(vel_session_add(handle, nullptr, nullptr, nullptr), VEL_INVALID_ARGUMENT);
  EXPECT_EQ(Testing::MessageOf(handle), "vel_source_image is NULL");
  EXPECT_EQ(vel_session_add_file(handle, nullptr, nullptr, nullptr), VEL_INVALID_ARGUMENT);
  EXPECT_EQ(vel_session_alternative(handle, 0, nullptr), VEL_INVALID_ARGUMENT);
  EXPECT_EQ(vel_session_exceeds_memory_limit(handle, nullptr), VEL_INVALID_ARGUMENT);
  EXPECT_EQ(vel_session_preview(handle, nullptr), VEL_INVALID_ARGUMENT);
  EXPECT_EQ(vel_session_stitch(handle, nullptr, nullptr, nullptr), VEL_INVALID_ARGUMENT);
  EXPECT_EQ(vel_session_message(handle, nullptr, 10), VEL_INVALID_ARGUMENT);
  char text = 'x';
  EXPECT_EQ(vel_session_message(handle, &text, 0), VEL_INVALID_ARGUMENT);
  EXPECT_EQ(text, 'x');
}

TEST_F(WithNullElsewhere, ResultsAnswerInvalidArgument) {
  vel_stitched* const handle = stitched.get();
  EXPECT_EQ(vel_stitched_part_count(handle, nullptr), VEL_INVALID_ARGUMENT);
  EXPECT_EQ(vel_stitched_part(handle, 0, nullptr), VEL_INVALID_ARGUMENT);
  EXPECT_EQ(vel_stitched_capture_count(handle, nullptr), VEL_INVALID_ARGUMENT);
  EXPECT_EQ(vel_stitched_capture(handle, 0, nullptr), VEL_INVALID_ARGUMENT);
  EXPECT_EQ(vel_stitched_borders(handle, nullptr), VEL_INVALID_ARGUMENT);
  EXPECT_EQ(vel_stitched_write(handle, nullptr, nullptr, nullptr, nullptr), VEL_INVALID_ARGUMENT);
}

TEST_F(WithNullElsewhere, PicturesAnswerInvalidArgument) {
  vel_picture* const handle = picture.get();
  int32_t size = 0;
  EXPECT_EQ(vel_picture_size(handle, nullptr, &size), VEL_INVALID_ARGUMENT);
  EXPECT_EQ(vel_picture_size(handle, &size, nullptr), VEL_INVALID_ARGUMENT);
  EXPECT_EQ(vel_picture_is_opaque(handle, nullptr), VEL_INVALID_ARGUMENT);
  EXPECT_EQ(vel_picture_read(handle, 0, 0, nullptr), VEL_INVALID_ARGUMENT);
  vel_target_image image;
  vel_target_image_init(&image, sizeof image);
  image.width = 1;
  image.height = 1;
  EXPECT_EQ(vel_picture_read(handle, 0, 0, &image), VEL_INVALID_ARGUMENT);
  EXPECT_EQ(vel_picture_write(handle, nullptr, nullptr, nullptr, nullptr), VEL_INVALID_ARGUMENT);
}

TEST_F(WithNullElsewhere, StitchersAnswerInvalidArgument) {
  vel_stitcher* const handle = stitcher.get();
  EXPECT_EQ(vel_stitcher_add(handle, nullptr), VEL_INVALID_ARGUMENT);
  EXPECT_EQ(vel_stitcher_add_file(handle, nullptr), VEL_INVALID_ARGUMENT);
  EXPECT_EQ(vel_stitcher_stitch(handle, nullptr, nullptr, nullptr), VEL_INVALID_ARGUMENT);
  EXPECT_EQ(vel_stitcher_motion_count(handle, nullptr), VEL_INVALID_ARGUMENT);
  vel_motion motion = {0, 0};
  EXPECT_EQ(vel_stitcher_motion(handle, 0, &motion), VEL_INVALID_ARGUMENT);
}

TEST_F(WithNullElsewhere, InitialisersDoNothing) {
  vel_session_settings_init(nullptr, sizeof(vel_session_settings));
  vel_stitcher_settings_init(nullptr, sizeof(vel_stitcher_settings));
  vel_file_settings_init(nullptr, sizeof(vel_file_settings));
  vel_source_image_init(nullptr, sizeof(vel_source_image));
  vel_target_image_init(nullptr, sizeof(vel_target_image));
  vel_outcome_init(nullptr, sizeof(vel_outcome));
  vel_placement_init(nullptr, sizeof(vel_placement));
  vel_borders_init(nullptr, sizeof(vel_borders));
  vel_outcome outcome = {};
  vel_outcome_init(&outcome, ~size_t{0});
  EXPECT_EQ(outcome.struct_size, 0U);
}

TEST_F(WithNullElsewhere, AnOutcomeWithoutItsSizeIsRefusedBeforeTheCaptureIsAdded) {
  const vel_source_image image = Testing::SourceOf(capture);
  vel_outcome outcome = {};
  EXPECT_EQ(vel_session_add(session.get(), &image, nullptr, &outcome), VEL_INVALID_ARGUMENT);
  size_t count = 0;
  EXPECT_EQ(vel_stitched_capture_count(Testing::Stitch(session.get()).get(), &count), VEL_OK);
  EXPECT_EQ(count, 1U);
}

}  // namespace
}  // namespace ScrollingCapture
