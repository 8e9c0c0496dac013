#include <cstring>
#include <string>

#include <gtest/gtest.h>

#include <VelScrollingCapture/frontend/Version.h>

namespace ScrollingCapture {
namespace {

TEST(Version, NumberIsOne) { EXPECT_EQ(VelScrollingCaptureVersionNumber, 1.0); }

TEST(Version, StringHasExactlyTheseBytesAndATerminatingZero) {
  const std::string expected("@(#)PROGRAM:VelScrollingCapture  PROJECT:VelScrollingCapture-1\n");
  EXPECT_EQ(std::memcmp(VelScrollingCaptureVersionString, expected.c_str(), expected.size() + 1),
            0);
}

}  // namespace
}  // namespace ScrollingCapture
