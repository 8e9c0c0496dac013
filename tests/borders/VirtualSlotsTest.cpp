#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <testkit/OpenBorderDetection.h>
#include <testkit/VirtualSlots.h>

namespace ScrollingCapture {
namespace {

using Testing::OpenBorderDetection;
using Testing::SlotOf;

TEST(BorderVirtualSlots, OfBorderDetectionFollowThoseOfTheStitcher) {
  EXPECT_THAT(
      (std::vector<size_t>{
          SlotOf(&OpenBorderDetection::Stitch), SlotOf(&OpenBorderDetection::GetTranslations),
          SlotOf(&OpenBorderDetection::ExtractBorders), SlotOf(&OpenBorderDetection::ApplyBorders),
          SlotOf(&OpenBorderDetection::FindContent), SlotOf(&OpenBorderDetection::CopyBorders),
          SlotOf(&OpenBorderDetection::AddBorders)}),
      testing::ElementsAre(2, 3, 4, 5, 6, 7, 8));
}

}  // namespace
}  // namespace ScrollingCapture
