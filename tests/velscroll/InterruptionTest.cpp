#include <csignal>
#include <fcntl.h>
#include <unistd.h>

#include <gmock/gmock.h>
#include <sys/stat.h>

#include "ProgramTest.h"

namespace ScrollingCapture {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

class Interruption : public Testing::ProgramTest {
 protected:
  /// Captures whose stitch takes a while: they are large, and nothing else limits the work.
  void WriteLargeScroll() const {
    cv::Mat largePage(1700, 1000, CV_8UC3);
    cv::RNG random(2);
    random.fill(largePage, cv::RNG::UNIFORM, 0, 256);
    for (int i = 0; i < 8; ++i) {
      WriteImage("capture-" + std::to_string(i) + ".bmp",
                 largePage(cv::Rect(0, 100 * i, 1000, 1000)));
    }
  }

  /// Starts a run that waits for its second capture, a pipe, to be written.
  void MakePipe() const { ASSERT_EQ(mkfifo(PathOf("pipe.png").c_str(), 0600), 0); }

  const std::vector<std::string> pipeArguments = {"capture-1.png", "pipe.png", "-o",
                                                  "page.png",      "--report", "page.json"};
};

class Signals : public Interruption, public ::testing::WithParamInterface<int> {};

TEST_P(Signals, CancelWhileCapturesAreRead) {
  WriteScroll();
  MakePipe();
  const auto before = Names();
  Testing::ProgramSetting setting;
  setting.folder = folder.Prefix();
  Testing::ProgramProcess program(pipeArguments, setting);
  const int pipe = open(PathOf("pipe.png").c_str(), O_WRONLY);  // returns when the program reads
  program.Signal(GetParam());
  const Testing::ProgramResult result = program.Wait();  // although nothing comes from the pipe
  close(pipe);
  EXPECT_EQ(result.status, 130);
  Testing::ExpectOneLine(result);
  EXPECT_THAT(result.standardError, HasSubstr("cancelled"));
  EXPECT_EQ(Names(), before);
}

TEST_P(Signals, CancelTheStitch) {
  WriteLargeScroll();
  const auto before = Names();
  Testing::ProgramSetting setting;
  setting.folder = folder.Prefix();
  setting.hasTerminal = true;
  Testing::ProgramProcess program(
      {"capture-*.bmp", "-o", "page.png", "--threads", "1", "--engine", "phase-correlation"},
      setting);
  ASSERT_TRUE(program.WaitForOnTerminal("Stitching"));
  program.Signal(GetParam());
  const Testing::ProgramResult result = program.Wait();
  EXPECT_EQ(result.status, 130);
  EXPECT_EQ(result.standardOutput, "");
  EXPECT_THAT(result.standardError, HasSubstr("\r\033[Kvelscroll: cancelled"));
  EXPECT_THAT(result.standardError, Not(HasSubstr("Error:")));
  EXPECT_THAT(result.standardError, Not(HasSubstr("Writing")));
  EXPECT_EQ(Names(), before);
}

INSTANTIATE_TEST_SUITE_P(All, Signals, ::testing::Values(SIGINT, SIGTERM, SIGHUP),
                         [](const auto& signal) {
                           return std::string(signal.param == SIGINT    ? "Interrupt"
                                              : signal.param == SIGTERM ? "Terminate"
                                                                        : "HangUp");
                         });

TEST_F(Interruption, ThatIsIgnoredFromTheStartStaysIgnored) {
  WriteScroll();
  MakePipe();
  Testing::ProgramSetting setting;
  setting.folder = folder.Prefix();
  setting.ignoresInterrupt = true;
  Testing::ProgramProcess program(pipeArguments, setting);
  const std::string capture = ReadBytes("capture-2.png");
  const int pipe = open(PathOf("pipe.png").c_str(), O_WRONLY);
  program.Signal(SIGINT);
  EXPECT_EQ(write(pipe, capture.data(), capture.size()), static_cast<ssize_t>(capture.size()));
  close(pipe);
  EXPECT_EQ(program.Wait().status, 0);
  EXPECT_EQ(ReadImage("page.png").rows, 110);
}

TEST_F(Interruption, BarShowsTheProgressOnATerminal) {
  WriteScroll();
  Testing::ProgramSetting setting;
  setting.hasTerminal = true;
  const Testing::ProgramResult result = Run({"capture-*.png", "-o", "page.png"}, setting);
  EXPECT_EQ(result.status, 0);
  for (const char* const stage : {"Reading", "Stitching", "Writing", "100%"}) {
    EXPECT_THAT(result.standardError, HasSubstr(stage));
  }
  EXPECT_THAT(result.standardError, ::testing::EndsWith("\r\033[K"));
}

TEST_F(Interruption, BarStaysAwayWhenQuiet) {
  WriteScroll();
  Testing::ProgramSetting setting;
  setting.hasTerminal = true;
  EXPECT_EQ(Run({"capture-*.png", "-o", "page.png", "--quiet"}, setting).standardError, "");
}

}  // namespace
}  // namespace ScrollingCapture
