#include <functional>
#include <string>

#include <gmock/gmock.h>
#include <velscroll/arguments/ChoiceValues.h>
#include <velscroll/terminal/Failure.h>

namespace ScrollingCapture {
namespace {

using Live::ScrollDirection;
using Program::ParseDirection;
using Program::ParseRegion;
using Program::ParseWindow;
using ::testing::EndsWith;
using ::testing::HasSubstr;

TEST(ChoiceValues, TakeTheNumberOfAWindowInBothWaysOfWritingIt) {
  EXPECT_EQ(ParseWindow("0x2a00007"), 0x2a00007U);
  EXPECT_EQ(ParseWindow("0X2A00007"), 0x2a00007U);
  EXPECT_EQ(ParseWindow("44040199"), 44040199U);
  EXPECT_EQ(ParseWindow("010"), 10U);
}

TEST(ChoiceValues, TakeARegionUpToTheLargestScreen) {
  EXPECT_EQ(ParseRegion("800x600+100+50"), cv::Rect(100, 50, 800, 600));
  EXPECT_EQ(ParseRegion("32767x1+0+32767"), cv::Rect(0, 32767, 32767, 1));
}

TEST(ChoiceValues, TakeEveryDirection) {
  EXPECT_EQ(ParseDirection("down"), ScrollDirection::Down);
  EXPECT_EQ(ParseDirection("up"), ScrollDirection::Up);
  EXPECT_EQ(ParseDirection("right"), ScrollDirection::Right);
  EXPECT_EQ(ParseDirection("left"), ScrollDirection::Left);
}

struct Refused {
  const char* option;
  std::function<void(const std::string&)> parse;
  const char* text;
};

void PrintTo(const Refused& refused, std::ostream* out) {
  *out << refused.option << " '" << refused.text << "'";
}

class RefusedChoice : public ::testing::TestWithParam<Refused> {};

TEST_P(RefusedChoice, IsQuoted) {
  try {
    GetParam().parse(GetParam().text);
    FAIL() << "it was taken";
  } catch (const Program::BadInput& refusal) {
    EXPECT_THAT(refusal.what(), HasSubstr(std::string(GetParam().option) + " takes "));
    EXPECT_THAT(refusal.what(), EndsWith(", not '" + std::string(GetParam().text) + "'"));
  }
}

Refused Window(const char* text) { return {"--window", ParseWindow, text}; }
Refused Region(const char* text) { return {"--region", ParseRegion, text}; }
Refused Direction(const char* text) { return {"--auto", ParseDirection, text}; }

INSTANTIATE_TEST_SUITE_P(All, RefusedChoice,
                         ::testing::Values(Window(""), Window("0"), Window("0x"), Window("seven"),
                                           Window("9 "), Window("-1"), Window("0x100000000"),
                                           Region(""), Region("800x600"), Region("0x5+1+1"),
                                           Region("5x0+1+1"), Region("32768x5+1+1"),
                                           Region("5x5+-1+1"), Region("5x5+1+1+"),
                                           Region("99999999999x5+1+1"), Direction(""),
                                           Direction("Down"), Direction("sideways")));

}  // namespace
}  // namespace ScrollingCapture
