// operator new fails once after another in everything that a caller does: no exception gets
// through, and the handles stay of use.

#include <string>

#include <gtest/gtest.h>
#include <testkit/TemporaryFolder.h>
#include <testkit/faults/FailingAllocator.h>

#include "FailingNew.h"
#include "Handles.h"

namespace ScrollingCapture {
namespace {

using Testing::FailingNew;
using Testing::WorkingNew;

/// Calls something until no allocation fails in it.
/// @param call makes the call and returns its result
template <typename Call>
void ForEachFailingNew(const Call& call) {
  const size_t failures = Testing::CountFailingAttempts([&](size_t after) {
    SCOPED_TRACE("after " + std::to_string(after) + " allocations");
    const FailingNew failing(after);
    const vel_result result = call();
    const WorkingNew working;
    EXPECT_TRUE(result == VEL_OUT_OF_MEMORY || result == VEL_OK) << vel_result_text(result);
    return FailingNew::HasFailed();
  });
  EXPECT_GT(failures, 0U);
}

class AllocationFaults : public testing::Test {
 protected:
  const cv::Mat page = Testing::NoiseCapture({90, 200}, 4);
  const std::vector<cv::Mat> captures = Testing::CapturesOf(page, 100, 50);
};

TEST_F(AllocationFaults, NoSessionIsMade) {
  vel_session_settings settings = Testing::DefaultSettings();
  settings.preview_width = 50;
  settings.preview_height = 50;
  ForEachFailingNew([&] {
    vel_session* session = nullptr;
    const vel_result result = vel_session_create(&settings, &session, nullptr, 0);
    EXPECT_EQ(session == nullptr, result != VEL_OK);
    vel_session_free(session);
    return result;
  });
}

TEST_F(AllocationFaults, ACaptureIsAddedAgainWithItsMotion) {
  vel_session_settings settings = Testing::DefaultSettings();
  settings.keep_repeats = 1;
  const vel_source_image image = Testing::SourceOf(captures[1]);
  const vel_motion wrong = {-30, 0};
  Testing::Owned<vel_session> session;
  ForEachFailingNew([&] {
    {
      const WorkingNew working;
      session = Testing::MakeSession(settings);
      Testing::Add(session.get(), captures[0]);
    }
    const vel_result result = vel_session_add(session.get(), &image, &wrong, nullptr);
    const WorkingNew working;
    if (result == VEL_OUT_OF_MEMORY) {
      EXPECT_EQ(vel_session_add(session.get(), &image, &wrong, nullptr), VEL_OK);
    }
    const auto stitched = Testing::Stitch(session.get());
    std::size_t count = 0;
    EXPECT_EQ(vel_stitched_capture_count(stitched.get(), &count), VEL_OK);
    EXPECT_EQ(count, 2U);
    EXPECT_EQ(Testing::Whole(Testing::PartOf(stitched.get()).get()).rows, 130);
    return result;
  });
}

TEST_F(AllocationFaults, AStitchIsMadeAgain) {
  const auto session = Testing::MakeSession();
  Testing::AddAll(session.get(), captures);
  Testing::Owned<vel_stitched> stitched;
  ForEachFailingNew([&] {
    vel_stitched* made = nullptr;
    const vel_result result = vel_session_stitch(session.get(), nullptr, nullptr, &made);
    EXPECT_EQ(made == nullptr, result != VEL_OK);
    stitched.reset(made);
    return result;
  });
  EXPECT_TRUE(Testing::SameBits(Testing::Whole(Testing::PartOf(stitched.get()).get()), page));
}

TEST_F(AllocationFaults, AFileIsWrittenAgain) {
  const Testing::TemporaryFolder folder;
  const auto session = Testing::MakeSession();
  Testing::AddAll(session.get(), captures);
  const auto stitched = Testing::Stitch(session.get());
  const std::string path = folder.Prefix() + "page.bmp";
  ForEachFailingNew([&] {
    const vel_result result =
        vel_stitched_write(stitched.get(), path.c_str(), nullptr, nullptr, nullptr);
    const WorkingNew working;
    EXPECT_EQ(folder.Contents().size(), result == VEL_OK ? 1U : 0U);
    std::filesystem::remove(path);
    return result;
  });
}

}  // namespace
}  // namespace ScrollingCapture
