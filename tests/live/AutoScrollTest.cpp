#include <gtest/gtest.h>
#include <live/AutoScroll.h>

namespace ScrollingCapture::Live {
namespace {

const cv::Size Window(300, 600);

/// A window whose wheel moves it by so many rows a step, over a content of so many rows.
class Wheel {
 public:
  Wheel(int rowsOfStep, int rows) : rowsOfStep(rowsOfStep), lastRow(rows - Window.height) {}

  void Turn(const AutoScroll::Turn& turn) {
    const int sign = turn.direction == ScrollDirection::Down ? 1 : -1;
    row = std::clamp(row + sign * turn.steps * rowsOfStep, 0, lastRow);
  }

  RecordingStatus Status() const {
    RecordingStatus status;
    status.place = {row, 0};
    status.seen = {0, 0, Window.width, row + Window.height};
    return status;
  }

  int row = 0;

 private:
  const int rowsOfStep;
  const int lastRow;
};

TEST(AutoScroll, GrowsStepsUntilAThirdOfTheWindowStaysInSight) {
  AutoScroll scroll(ScrollDirection::Down, 0, Window);
  Wheel wheel(50, 100000);
  int steps = 0;
  for (int i = 0; i < 8; ++i) {
    const auto turn = scroll.Next(wheel.Status());
    ASSERT_TRUE(turn.has_value());
    steps = turn->steps;
    wheel.Turn(*turn);
  }
  EXPECT_EQ(steps, 8) << "400 of 600 rows";
}

TEST(AutoScroll, EndsAtTheEndOfTheContent) {
  AutoScroll scroll(ScrollDirection::Down, 0, Window);
  Wheel wheel(53, 5000);
  int turns = 0;
  for (auto turn = scroll.Next(wheel.Status()); turn; turn = scroll.Next(wheel.Status())) {
    wheel.Turn(*turn);
    ASSERT_LT(++turns, 100);
  }
  EXPECT_EQ(wheel.row, 4400);
  EXPECT_FALSE(scroll.GaveUp());
}

TEST(AutoScroll, EndsAtTheLimit) {
  AutoScroll scroll(ScrollDirection::Down, 2000, Window);
  Wheel wheel(50, 100000);
  for (auto turn = scroll.Next(wheel.Status()); turn; turn = scroll.Next(wheel.Status())) {
    wheel.Turn(*turn);
  }
  EXPECT_GE(wheel.row, 1400);
  EXPECT_LE(wheel.row, 1800);
}

TEST(AutoScroll, ScrollsBackStepByStepAndTakesSmallerSteps) {
  AutoScroll scroll(ScrollDirection::Right, 0, Window);
  RecordingStatus status;
  status.seen = {{}, Window};
  ASSERT_TRUE(scroll.Next(status));
  status.place = {0, 10};
  EXPECT_EQ(scroll.Next(status)->steps, 2);
  status.place = {0, 30};
  EXPECT_EQ(scroll.Next(status)->steps, 4);
  status.tooFast = true;
  for (int i = 0; i < 3; ++i) {
    const auto back = scroll.Next(status);
    ASSERT_TRUE(back.has_value());
    EXPECT_EQ(back->direction, ScrollDirection::Left);
    EXPECT_EQ(back->steps, 1);
  }
  status.tooFast = false;
  const auto again = scroll.Next(status);
  EXPECT_EQ(again->direction, ScrollDirection::Right);
  EXPECT_EQ(again->steps, 2);
}

TEST(AutoScroll, TurnsNoMoreStepsThanTheWindowHasRowsHoweverLittleTheyMove) {
  AutoScroll scroll(ScrollDirection::Down, 0, Window);
  Wheel wheel(16, 100000);
  for (int i = 0; i < 60; ++i) {
    const auto turn = scroll.Next(wheel.Status());
    ASSERT_TRUE(turn.has_value());
    ASSERT_GE(turn->steps, 1);
    ASSERT_LE(turn->steps, Window.height);
    wheel.Turn({turn->direction, 1});
  }
}

TEST(AutoScroll, GivesUpWhereOneStepIsTooMuch) {
  AutoScroll scroll(ScrollDirection::Up, 0, Window);
  RecordingStatus status;
  ASSERT_TRUE(scroll.Next(status));
  status.tooFast = true;
  EXPECT_FALSE(scroll.Next(status));
  EXPECT_TRUE(scroll.GaveUp());
}

}  // namespace
}  // namespace ScrollingCapture::Live
