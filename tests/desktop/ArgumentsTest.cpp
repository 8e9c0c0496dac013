#include <desktop/Arguments.h>
#include <gtest/gtest.h>
#include <velscroll/terminal/Failure.h>

namespace ScrollingCapture::Desktop {
namespace {

Arguments Parse(const QStringList& words) {
  return ParseArguments(QStringList("velscroll-desktop") + words);
}

TEST(ArgumentsTest, AskForNothingByThemselves) {
  const Arguments arguments = Parse({});
  EXPECT_EQ(arguments.text, "");
  EXPECT_FALSE(arguments.choice);
}

TEST(ArgumentsTest, NameAWindow) {
  EXPECT_EQ(Parse({"--window", "0x2a00007"}).choice->window, 0x2a00007U);
  EXPECT_EQ(Parse({"--window=44040199", "--cursor"}).choice->window, 44040199U);
  EXPECT_TRUE(Parse({"--window=44040199", "--cursor"}).options.showsPointer);
}

TEST(ArgumentsTest, NameARegionAndADirection) {
  const Arguments arguments = Parse({"--region", "800x600+100+50", "--auto", "right"});
  EXPECT_EQ(arguments.choice->window, xcb_window_t{XCB_WINDOW_NONE});
  EXPECT_EQ(arguments.choice->region, cv::Rect(100, 50, 800, 600));
  EXPECT_EQ(arguments.options.scrollsByItself, Live::ScrollDirection::Right);
  EXPECT_FALSE(arguments.options.showsPointer);
}

TEST(ArgumentsTest, AskForHelpAndVersion) {
  EXPECT_TRUE(Parse({"--help"}).text.contains("--region"));
  EXPECT_TRUE(Parse({"--version"}).text.startsWith("velscroll-desktop "));
}

TEST(ArgumentsTest, AreRefusedInWordsThatQuoteThem) {
  try {
    Parse({"--region", "99999x9+0+0"});
    FAIL() << "a screen is not so wide";
  } catch (const Program::BadInput& refusal) {
    EXPECT_TRUE(QString(refusal.what()).endsWith("not '99999x9+0+0'")) << refusal.what();
  }
}

class BadArgumentsTest : public testing::TestWithParam<QStringList> {};

TEST_P(BadArgumentsTest, AreRefused) { EXPECT_THROW(Parse(GetParam()), Program::BadInput); }

INSTANTIATE_TEST_SUITE_P(
    Words, BadArgumentsTest,
    testing::Values(QStringList{"--window", "nine"}, QStringList{"--window", "0"},
                    QStringList{"--region", "800x600"}, QStringList{"--region", "0x600+1+1"},
                    QStringList{"--region", "800x600+-1+1"},
                    QStringList{"--region", "9x9+0+0", "--window", "9"},
                    QStringList{"--region", "9x9+0+0", "--auto", "sideways"},
                    QStringList{"--auto", "down"}, QStringList{"--cursor"}, QStringList{"page.png"},
                    QStringList{"--frob"}, QStringList{"--window"}));

}  // namespace
}  // namespace ScrollingCapture::Desktop
