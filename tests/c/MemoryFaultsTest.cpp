// No memory for a matrix: whatever fails, the call says so and the handle stays of use.

#include <gtest/gtest.h>
#include <testkit/faults/EveryFailure.h>

#include "Handles.h"

namespace ScrollingCapture {
namespace {

using Testing::ForEachFailingAllocation;
using Testing::MemoryFault;
using Testing::SameBits;

class MemoryFaultsInC : public testing::TestWithParam<Testing::FailingAllocator::Failures> {
 protected:
  void AddAll(vel_stitcher* stitcher) const {
    for (const cv::Mat& capture : captures) {
      const vel_source_image image = Testing::SourceOf(capture);
      ASSERT_EQ(vel_stitcher_add(stitcher, &image), VEL_OK);
    }
  }

  const cv::Mat page = Testing::NoiseCapture({90, 200}, 4);
  const std::vector<cv::Mat> captures = Testing::CapturesOf(page, 100, 50);
};

TEST_P(MemoryFaultsInC, AddedCapturesAreWholeOrRefused) {
  ForEachFailingAllocation(GetParam(), [&](MemoryFault& fault) {
    const auto session = Testing::MakeSession();
    Testing::Add(session.get(), captures[0]);
    const vel_source_image image =
        Testing::SourceOf(captures[1], VEL_BGRA, VEL_STRAIGHT);  // opaque
    vel_result result = VEL_OK;
    fault.HitsDuring([&] { result = vel_session_add(session.get(), &image, nullptr, nullptr); });
    ASSERT_EQ(result, fault.HasHit() ? VEL_OUT_OF_MEMORY : VEL_OK);
    EXPECT_EQ(vel_session_add(session.get(), &image, nullptr, nullptr), VEL_OK);
    Testing::Stitch(session.get());
  });
}

TEST_P(MemoryFaultsInC, AStitchFailsAndIsMadeAgain) {
  const auto stitcher = Testing::MakeStitcher();
  const auto stitch = [&] {
    vel_picture* picture = nullptr;
    const vel_result result = vel_stitcher_stitch(stitcher.get(), nullptr, nullptr, &picture);
    EXPECT_EQ(picture == nullptr, result != VEL_OK);
    vel_picture_free(picture);
    return result;
  };
  ForEachFailingAllocation(GetParam(), [&](MemoryFault& fault) {
    AddAll(stitcher.get());
    vel_result result = VEL_OK;
    fault.HitsDuring([&] { result = stitch(); });
    ASSERT_EQ(result, fault.HasHit() ? VEL_OUT_OF_MEMORY : VEL_OK);
    AddAll(stitcher.get());
    EXPECT_EQ(stitch(), VEL_OK);
  });
}

TEST_P(MemoryFaultsInC, ReadingFailsAndIsDoneAgain) {
  const auto session = Testing::MakeSession();
  Testing::AddAll(session.get(), captures);
  const auto picture = Testing::PartOf(Testing::Stitch(session.get()).get());
  ForEachFailingAllocation(GetParam(), [&](MemoryFault& fault) {
    cv::Mat pixels(page.size(), CV_8UC3);
    const vel_target_image image = Testing::TargetOf(pixels, VEL_BGR);
    vel_result result = VEL_OK;
    fault.HitsDuring([&] { result = vel_picture_read(picture.get(), 0, 0, &image); });
    ASSERT_EQ(result, fault.HasHit() ? VEL_OUT_OF_MEMORY : VEL_OK);
    EXPECT_TRUE(SameBits(Testing::Whole(picture.get()), page));
  });
}

INSTANTIATE_TEST_SUITE_P(, MemoryFaultsInC, testing::ValuesIn(Testing::AllFailures),
                         Testing::NameOfFailures);

}  // namespace
}  // namespace ScrollingCapture
