#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>
#include <testkit/MatrixTesting.h>
#include <testkit/pages/Page.h>
#include <tests/live/x11/PageWindow.h>
#include <tests/live/x11/UserInput.h>
#include <tests/live/x11/XServer.h>
#include <tests/velscroll/ProgramTest.h>
#include <xkbcommon/xkbcommon-keysyms.h>

namespace ScrollingCapture {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;
using Testing::PageWindow;
using Testing::ProgramProcess;
using Testing::ProgramResult;
using Testing::ProgramSetting;
using Testing::UserInput;

void Pause() { std::this_thread::sleep_for(std::chrono::milliseconds(150)); }

/// Runs velscroll record on an X server with one window.
class Record : public Testing::ProgramTest {
 protected:
  std::vector<std::string> Arguments(const std::vector<std::string>& more) const {
    std::vector<std::string> arguments = {"record", "--window", std::to_string(window.Number()),
                                          "-o", "page.png"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
  }

  ProgramSetting OnTerminal() const {
    ProgramSetting setting;
    setting.folder = folder.Prefix();
    setting.hasTerminal = true;
    setting.isControlled = true;
    return setting;
  }

  /// Scrolls the window once the recording has begun.
  void ScrollByHand(ProgramProcess& program) {
    ASSERT_TRUE(program.WaitForOnTerminal("300 rows, 400 columns; Enter ends"));
    for (int row = 60; row <= 300; row += 60) {
      window.ScrollTo(row);
      Pause();
    }
  }

  void ExpectRows(int rows) const {
    cv::Mat image;
    cv::cvtColor(ReadImage("page.png"), image, cv::COLOR_BGR2RGBA);
    EXPECT_TRUE(Testing::SameBits(image, content.rowRange(0, rows).clone())) << image.size();
  }

  Testing::XServer server{{"-screen", "0", "640x480x24"}};
  const cv::Mat content = Testing::TextPage({400, 1500});
  PageWindow window{content, {100, 80, 400, 300}, "Recorded page"};
};

class RecordSignals : public Record, public ::testing::WithParamInterface<int> {};

TEST_P(RecordSignals, SaveWhatWasCaptured) {
  ProgramProcess program(Arguments({}), OnTerminal());
  ScrollByHand(program);
  program.Signal(GetParam());
  const ProgramResult result = program.Wait();
  EXPECT_EQ(result.status, 0) << result.standardError;
  EXPECT_THAT(result.standardOutput, HasSubstr("page.png: 400 x 600 pixels"));
  ExpectRows(600);
}

INSTANTIATE_TEST_SUITE_P(All, RecordSignals, ::testing::Values(SIGINT, SIGTERM, SIGHUP),
                         [](const auto& signal) {
                           return std::string(signal.param == SIGINT    ? "Interrupt"
                                              : signal.param == SIGTERM ? "Terminate"
                                                                        : "HangUp");
                         });

TEST_F(Record, IsDiscardedByASecondInterrupt) {
  const auto before = Names();
  ProgramProcess program(Arguments({"--report", "page.json"}), OnTerminal());
  ScrollByHand(program);
  program.Signal(SIGINT);
  std::this_thread::sleep_for(std::chrono::milliseconds(3));
  program.Signal(SIGINT);
  const ProgramResult result = program.Wait();
  EXPECT_EQ(result.status, 130);
  EXPECT_THAT(result.standardError, HasSubstr("cancelled, nothing was written"));
  EXPECT_EQ(Names(), before);
}

TEST_F(Record, IsSavedByEnter) {
  ProgramProcess program(Arguments({}), OnTerminal());
  ScrollByHand(program);
  program.Type("\n");
  EXPECT_EQ(program.Wait().status, 0);
  ExpectRows(600);
}

TEST_F(Record, IsSavedByTheStopKey) {
  ProgramProcess program(Arguments({"--stop-key", "F9"}), OnTerminal());
  ScrollByHand(program);
  const UserInput user;
  user.PressKey(XKB_KEY_F9);
  user.ReleaseKey(XKB_KEY_F9);
  EXPECT_EQ(program.Wait().status, 0);
  ExpectRows(600);
}

TEST_F(Record, IsSavedWhenTheWindowCloses) {
  ProgramProcess program(Arguments({}), OnTerminal());
  ScrollByHand(program);
  window.Close();
  const ProgramResult result = program.Wait();
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.standardError,
              HasSubstr("the window was closed; what was captured until then is saved"));
  ExpectRows(600);
}

TEST_F(Record, IsSavedWhenTheServerEnds) {
  ProgramProcess program(Arguments({}), OnTerminal());
  ScrollByHand(program);
  server.Kill();
  const ProgramResult result = program.Wait();
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.standardError, HasSubstr("the connection to the X server broke"));
  ExpectRows(600);
}

TEST_F(Record, TellsStepsAndWhenTheScrollingIsTooFast) {
  ProgramProcess program(Arguments({}), OnTerminal());
  ScrollByHand(program);
  EXPECT_TRUE(program.WaitForOnTerminal("600 rows, 400 columns, last step 60 rows down"));
  window.ScrollTo(1000);
  EXPECT_TRUE(program.WaitForOnTerminal("too fast: scroll back a little, to where row 300"));
  for (int row = 900; row >= 200; row -= 100) {
    window.ScrollTo(row);
    Pause();
  }
  EXPECT_TRUE(program.WaitForOnTerminal("1300 rows, 400 columns, last step 100 rows up"));
  program.Signal(SIGTERM);
  EXPECT_EQ(program.Wait().status, 0);
  ExpectRows(1300);
}

TEST_F(Record, ComesInPartsWhenNobodyScrollsBack) {
  ProgramProcess program(Arguments({}), OnTerminal());
  ScrollByHand(program);
  window.ScrollTo(1000);
  EXPECT_TRUE(program.WaitForOnTerminal("too fast"));
  program.Signal(SIGTERM);
  EXPECT_EQ(program.Wait().status, 3);
  EXPECT_THAT(Names(), ElementsAre("page-1.png", "page-2.png"));
}

TEST_F(Record, ScrollsByItselfToTheEndOfTheContent) {
  const ProgramResult result = Run(Arguments({"--auto", "down"}));
  EXPECT_EQ(result.status, 0) << result.standardError;
  EXPECT_EQ(result.standardError, "");
  ExpectRows(1500);
}

TEST_F(Record, EndsAtTheLimit) {
  EXPECT_EQ(Run(Arguments({"--auto", "down", "--limit", "500"})).status, 0);
  EXPECT_GE(ReadImage("page.png").rows, 500);
  EXPECT_LE(ReadImage("page.png").rows, 700);
}

TEST_F(Record, KeepsCapturesThatStitchToTheSame) {
  EXPECT_EQ(Run(Arguments({"--auto", "down", "--keep-captures", "kept/here"})).status, 0);
  EXPECT_EQ(Run({"kept/here", "-o", "again.png"}).status, 0);
  EXPECT_TRUE(Testing::SameBits(ReadImage("again.png"), ReadImage("page.png")));
  EXPECT_THAT(Names(), ::testing::Contains("kept/here/capture-0001.png"));

  std::filesystem::remove(PathOf("kept/here/capture-0001.png"));
  const ProgramResult refused = Run(Arguments({"--auto", "down", "--keep-captures", "kept/here"}));
  EXPECT_EQ(refused.status, 2);
  EXPECT_THAT(refused.standardError, HasSubstr("'kept/here' of --keep-captures holds captures"));
}

TEST_F(Record, PutsThePictureOnTheClipboard) {
  const ProgramResult result = Run(Arguments({"--auto", "down", "--limit", "400", "--clipboard"}));
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.standardError, "");
  ASSERT_EQ(std::system(
                ("xclip -selection clipboard -t image/png -out > " + PathOf("pasted.png")).c_str()),
            0);
  EXPECT_EQ(ReadBytes("pasted.png"), ReadBytes("page.png"));
}

TEST_F(Record, SaysThatOnlyTheFirstOfSeveralFilesIsOnTheClipboard) {
  const ProgramResult result =
      Run(Arguments({"--auto", "down", "--limit", "700", "--split", "300", "--clipboard"}));
  EXPECT_EQ(result.status, 0) << result.standardError;
  EXPECT_THAT(result.standardError, HasSubstr("only the first one, 'page-1.png', is on the clip"));
  ASSERT_EQ(std::system(
                ("xclip -selection clipboard -t image/png -out > " + PathOf("pasted.png")).c_str()),
            0);
  EXPECT_EQ(ReadBytes("pasted.png"), ReadBytes("page-1.png"));
}

TEST_F(Record, TellsWhichToolForTheClipboardIsMissing) {
  const std::string path = std::getenv("PATH");
  setenv("PATH", "/nowhere", 1);
  const ProgramResult result = Run(Arguments({"--clipboard"}));
  setenv("PATH", path.c_str(), 1);
  EXPECT_EQ(result.status, 2);
  Testing::ExpectOneLine(result);
  EXPECT_THAT(result.standardError, HasSubstr("--clipboard needs xclip"));
}

TEST_F(Record, TakesTheWindowThatIsClicked) {
  ProgramProcess program({"record", "-o", "page.png"}, OnTerminal());
  ASSERT_TRUE(program.WaitForOnTerminal("click on a window"));
  Pause();
  const UserInput user;
  user.MoveTo({300, 200});
  user.PressButton(1);
  user.ReleaseButton(1);
  ScrollByHand(program);
  program.Signal(SIGTERM);
  EXPECT_EQ(program.Wait().status, 0);
  EXPECT_EQ(window.Presses(), 0);
  ExpectRows(600);
}

TEST_F(Record, IsCancelledByEscapeWhileChoosing) {
  ProgramProcess program({"record", "-o", "page.png"}, OnTerminal());
  ASSERT_TRUE(program.WaitForOnTerminal("click on a window"));
  Pause();
  UserInput().PressKey(XKB_KEY_Escape);
  EXPECT_EQ(program.Wait().status, 130);
}

TEST_F(Record, IsCancelledByCtrlCBeforeItBegins) {
  ProgramProcess program(Arguments({"--delay", "60"}), OnTerminal());
  ASSERT_TRUE(program.WaitForOnTerminal("begins in 60 s"));
  program.Type("\x03");
  EXPECT_EQ(program.Wait().status, 130);
  EXPECT_THAT(Names(), ElementsAre());
}

TEST_F(Record, TakesTheWindowOfATitle) {
  const ProgramResult result = Run({"record", "--window-name", "RECORDED", "--auto", "down",
                                    "--limit", "350", "-o", "page.png"});
  EXPECT_EQ(result.status, 0) << result.standardError;
  EXPECT_EQ(ReadImage("page.png").cols, 400);
}

TEST_F(Record, TakesARegion) {
  const ProgramResult result = Run({"record", "--region", "200x150+150+120", "--auto", "down",
                                    "--limit", "300", "-o", "page.png"});
  EXPECT_EQ(result.status, 0) << result.standardError;
  EXPECT_EQ(ReadImage("page.png").cols, 200);
  EXPECT_GE(ReadImage("page.png").rows, 300);
}

TEST_F(Record, SaysWhyNothingWasCaptured) {
  const ProgramResult result = Run({"record", "--window", "0x999", "-o", "page.png"});
  EXPECT_EQ(result.status, 2);
  Testing::ExpectOneLine(result);
  EXPECT_THAT(result.standardError, HasSubstr("there is no window 0x999"));
}

struct Refusal {
  const char* name;
  std::vector<std::string> arguments;
  const char* line;
};

class RecordArguments : public Testing::ProgramTest,
                        public ::testing::WithParamInterface<Refusal> {};

TEST_P(RecordArguments, AreRefused) {
  std::vector<std::string> arguments = {"record", "-o", "page.png"};
  arguments.insert(arguments.end(), GetParam().arguments.begin(), GetParam().arguments.end());
  const ProgramResult result = Run(arguments);
  EXPECT_EQ(result.status, 2);
  Testing::ExpectOneLine(result);
  EXPECT_THAT(result.standardError, HasSubstr(GetParam().line));
}

INSTANTIATE_TEST_SUITE_P(
    All, RecordArguments,
    ::testing::Values(
        Refusal{"Region", {"--region", "800x600"}, "such as 800x600+100+50, not '800x600'"},
        Refusal{"EmptyRegion", {"--region", "0x5+1+1"}, "such as 800x600+100+50"},
        Refusal{"HugeRegion", {"--region", "99999999999x5+1+1"}, "such as 800x600+100+50"},
        Refusal{"Window", {"--window", "seven"}, "such as 0x1400003, not 'seven'"},
        Refusal{"NoWindow", {"--window", "0"}, "such as 0x1400003, not '0'"},
        Refusal{"Direction", {"--auto", "north"}, "down, up, right or left, not 'north'"},
        Refusal{"Limit", {"--auto", "up", "--limit", "0"}, "--limit takes a whole number from 1"},
        Refusal{"LimitAlone", {"--limit", "100"}, "--limit requires --auto"},
        Refusal{"Delay", {"--delay", "-1"}, "--delay takes seconds from 0 to 3600, not '-1'"},
        Refusal{"DelayOfNothing", {"--delay", "nan"}, "--delay takes seconds"},
        Refusal{"TwoChoices",
                {"--window", "1", "--window-name", "page"},
                "--window excludes --window-name"},
        Refusal{"Captures", {"capture.png"}, "see velscroll record --help"},
        Refusal{"Format", {"--window", "1", "-o", "page.xyz"}, "page.xyz"}),
    [](const auto& refusal) { return std::string(refusal.param.name); });

class RecordWithoutServer : public Testing::ProgramTest {
 protected:
  RecordWithoutServer() { unsetenv("DISPLAY"); }
  ~RecordWithoutServer() override { unsetenv("WAYLAND_DISPLAY"); }

  std::string Line() const {
    const ProgramResult result = Run({"record", "-o", "page.png"});
    EXPECT_EQ(result.status, 2);
    Testing::ExpectOneLine(result);
    return result.standardError;
  }
};

TEST_F(RecordWithoutServer, IsRefused) { EXPECT_THAT(Line(), HasSubstr("set DISPLAY")); }

TEST_F(RecordWithoutServer, UnderWaylandIsRefused) {
  setenv("WAYLAND_DISPLAY", "wayland-0", 1);
  EXPECT_THAT(Line(), HasSubstr("this session is Wayland"));
}

}  // namespace
}  // namespace ScrollingCapture
