#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <testkit/pages/Scenes.h>

#include <VelScrollingCapture/matching/internal/BlankOverlap.h>
#include <VelScrollingCapture/matching/internal/PixelKeys.h>

namespace ScrollingCapture {
namespace {

using namespace Testing;
using testing::Contains;
using testing::IsEmpty;
using testing::Not;

const cv::Size Size(320, 240);

/// Text, 200 blank rows from row 120 on, and text again.
cv::Mat Page() {
  cv::Mat page = DrawPhoto({Size.width, 600}, 1);
  page.rowRange(120, 320).setTo(cv::Scalar(250, 250, 250, 255));
  return page;
}

std::vector<cv::Point> Motions(const cv::Mat& earlier, const cv::Mat& later,
                               ScrollOrientation orientation = Both) {
  return MotionsOfBlankOverlap(PixelKeysOf(earlier, false), PixelKeysOf(later, false), orientation);
}

TEST(BlankOverlap, AllowsAnyMotionThatLaysBlankRowsOnOneAnother) {
  const cv::Mat first = Window(Page(), Size, {0, 0});
  const cv::Mat second = Window(Page(), Size, {0, 150});
  const std::vector<cv::Point> down = Motions(first, second);
  ASSERT_THAT(down, Not(IsEmpty()));
  EXPECT_EQ(down.front(), cv::Point(0, -120));
  EXPECT_THAT(down, Contains(cv::Point(0, -150)));
  EXPECT_EQ(down.back(), cv::Point(0, -232));
  const std::vector<cv::Point> up = Motions(second, first);
  EXPECT_EQ(up.front(), cv::Point(0, 120));
  EXPECT_EQ(up.size(), down.size());
}

TEST(BlankOverlap, LeavesOutWhatStandsStillAtTheEnds) {
  cv::Mat first = Window(Page(), Size, {0, 0});
  cv::Mat second = Window(Page(), Size, {0, 150});
  const cv::Mat header = DrawPhoto({Size.width, 20}, 2);
  const cv::Mat footer = DrawPhoto({Size.width, 30}, 3);
  for (cv::Mat* capture : {&first, &second}) {
    Lay(header, *capture, {0, 0});
    Lay(footer, *capture, {0, 210});
  }
  const std::vector<cv::Point> motions = Motions(first, second);
  ASSERT_THAT(motions, Not(IsEmpty()));
  EXPECT_EQ(motions.front(), cv::Point(0, -100));
  EXPECT_THAT(motions, Contains(cv::Point(0, -150)));
}

TEST(BlankOverlap, AllowsStandingStillWhereEverythingIsBlank) {
  const cv::Mat blank(Size, CV_8UC4, cv::Scalar(9, 9, 9, 255));
  const std::vector<cv::Point> motions = Motions(blank, blank);
  ASSERT_THAT(motions, Not(IsEmpty()));
  EXPECT_EQ(motions.front(), cv::Point());
  EXPECT_THAT(motions, Contains(cv::Point(0, 100)));
  EXPECT_THAT(motions, Contains(cv::Point(0, -100)));
}

TEST(BlankOverlap, IsNoneWhereBlankRowsAreFewOrOfOtherColours) {
  const cv::Mat page = Page();
  const cv::Mat first = Window(page, Size, {0, 0});
  EXPECT_THAT(Motions(first, Window(page, Size, {0, 300})), IsEmpty());
  cv::Mat other = Window(page, Size, {0, 150});
  other.rowRange(0, 170).setTo(cv::Scalar(200, 250, 250, 255));
  EXPECT_THAT(Motions(first, other), IsEmpty());
}

TEST(BlankOverlap, CountsColumnsOnlyWhereContentMovesAlongRows) {
  cv::Mat first;
  cv::Mat second;
  cv::transpose(Window(Page(), Size, {0, 0}), first);
  cv::transpose(Window(Page(), Size, {0, 150}), second);
  EXPECT_THAT(Motions(first, second, Both), IsEmpty());
  EXPECT_THAT(Motions(first, second, Horizontal), Contains(cv::Point(-150, 0)));
}

}  // namespace
}  // namespace ScrollingCapture
