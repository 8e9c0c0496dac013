#include <gtest/gtest.h>
#include <live/SeenArea.h>

namespace ScrollingCapture::Live {
namespace {

TEST(SeenArea, CoversNothingAtFirst) { EXPECT_FALSE(SeenArea().Covers({0, 0, 1, 1})); }

TEST(SeenArea, CoversWhatSeveralRectanglesMakeUp) {
  SeenArea seen;
  seen.Add({0, -10, 20, 10});
  seen.Add({0, 0, 20, 30});
  seen.Add({0, 30, 20, 10});
  EXPECT_TRUE(seen.Covers({0, -10, 20, 50}));
  EXPECT_TRUE(seen.Covers({5, -5, 10, 40}));
  EXPECT_FALSE(seen.Covers({0, -11, 20, 50}));
  EXPECT_FALSE(seen.Covers({0, -10, 21, 50}));
}

TEST(SeenArea, SeesThePixelInTheMiddleOfAFrameMissing) {
  SeenArea seen;
  for (const cv::Rect& side :
       {cv::Rect(0, 0, 9, 4), cv::Rect(0, 5, 9, 4), cv::Rect(0, 0, 4, 9), cv::Rect(5, 0, 4, 9)}) {
    seen.Add(side);
  }
  EXPECT_FALSE(seen.Covers({0, 0, 9, 9}));
  seen.Add({4, 4, 1, 1});
  EXPECT_TRUE(seen.Covers({0, 0, 9, 9}));
}

}  // namespace
}  // namespace ScrollingCapture::Live
