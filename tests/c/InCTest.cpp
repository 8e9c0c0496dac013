#include <gtest/gtest.h>

#include "InC.h"

namespace ScrollingCapture {
namespace {

TEST(InC, ASessionGivesThePage) { EXPECT_STREQ(vel_test_session(), nullptr); }

TEST(InC, AStitcherGivesThePage) { EXPECT_STREQ(vel_test_stitcher(), nullptr); }

TEST(InC, AStitchIsCancelledAndMadeAgain) { EXPECT_STREQ(vel_test_cancelling(), nullptr); }

TEST(InC, NothingIsFreedWithoutHarm) { EXPECT_STREQ(vel_test_freeing_nothing(), nullptr); }

}  // namespace
}  // namespace ScrollingCapture
