#include <thread>

#include <gmock/gmock.h>

#include "ProgramTest.h"

namespace ScrollingCapture {
namespace {

using ::testing::HasSubstr;

struct WrongUsage {
  const char* name;
  std::vector<std::string> arguments;
  const char* complaint;
};

void PrintTo(const WrongUsage& usage, std::ostream* stream) { *stream << usage.name; }

class Arguments : public Testing::ProgramTest {};

class WrongArguments : public Arguments, public ::testing::WithParamInterface<WrongUsage> {};

TEST_P(WrongArguments, AreRefusedInOneLine) {
  WriteScroll();
  const auto before = Names();
  const Testing::ProgramResult result = Run(GetParam().arguments);
  EXPECT_EQ(result.status, 2);
  Testing::ExpectOneLine(result);
  EXPECT_THAT(result.standardError, HasSubstr(GetParam().complaint));
  EXPECT_EQ(Names(), before);
}

const char* const Capture = "capture-1.png";

INSTANTIATE_TEST_SUITE_P(
    Usage, WrongArguments,
    ::testing::Values(
        WrongUsage{"Nothing", {}, "no captures given"},
        WrongUsage{"NoCaptures", {"-o", "page.png"}, "no captures given"},
        WrongUsage{"NoOutput", {Capture}, "no output file given"},
        WrongUsage{"UnknownOption", {Capture, "-o", "page.png", "--fast"}, "--fast"},
        WrongUsage{"UnknownOptionOfTwoLines",
                   {Capture, "-o", "page.png", "--fast\nas \x1B[1mlight"},
                   "--fast?as ?[1mlight"},
        WrongUsage{"OutputWithoutValue", {Capture, "-o"}, "--output"},
        WrongUsage{"NoThreads", {Capture, "-o", "page.png", "--threads", "0"}, "not '0'"},
        WrongUsage{"NegativeThreads", {Capture, "-o", "page.png", "--threads=-1"}, "not '-1'"},
        WrongUsage{"ThreadsInWords", {Capture, "-o", "page.png", "--threads", "two"}, "not 'two'"},
        WrongUsage{"PartOfAThread", {Capture, "-o", "page.png", "--threads", "1.5"}, "not '1.5'"},
        WrongUsage{"TooManyThreads", {Capture, "-o", "page.png", "--threads", "1025"}, "1024"},
        WrongUsage{"HugeThreads", {Capture, "-o", "page.png", "--threads", "99999999999"}, "1024"},
        WrongUsage{"UnknownOrientation",
                   {Capture, "-o", "page.png", "--orientation", "sideways"},
                   "vertical, horizontal or both"},
        WrongUsage{"UnknownEngine",
                   {Capture, "-o", "page.png", "--engine", "guess"},
                   "'guess'; use exact or phase-correlation"},
        WrongUsage{"UnknownFixed",
                   {Capture, "-o", "page.png", "--fixed", "twice"},
                   "'twice'; use once or keep"},
        WrongUsage{"BordersWithExactJoins",
                   {Capture, "-o", "page.png", "--borders"},
                   "--borders needs --engine phase-correlation"},
        WrongUsage{"FixedWithPhaseCorrelation",
                   {Capture, "-o", "page.png", "--engine", "phase-correlation", "--fixed", "keep"},
                   "--fixed needs --engine exact"},
        WrongUsage{"SplitIntoNothing", {Capture, "-o", "page.png", "--split", "0"}, "--split"},
        WrongUsage{"TooMuchQuality",
                   {Capture, "-o", "page.jpg", "--jpeg-quality", "101"},
                   "from 1 to 100, not '101'"},
        WrongUsage{"LevelTooHigh", {Capture, "-o", "page.png", "--png-level", "10"}, "from 0 to 9"},
        WrongUsage{
            "UnknownColour", {Capture, "-o", "page.png", "--background", "nice"}, "--background"},
        WrongUsage{"JoinsThatAreNotThere",
                   {Capture, "-o", "page.png", "--joins", "none.json"},
                   "none.json"},
        WrongUsage{"TwoResultsToStandardOutput", {Capture, "-o", "-", "--report", "-"}, "'-'"},
        WrongUsage{"NoExtension", {Capture, "-o", "page"}, "has no extension; use one of .png"},
        WrongUsage{"UnknownExtension", {Capture, "-o", "page.doc"}, "use one of .png"},
        WrongUsage{"DifferenceTooLarge",
                   {Capture, "-o", "page.png", "--engine", "phase-correlation", "--borders",
                    "--difference-threshold", "256"},
                   "from 0 to 255, not '256'"},
        WrongUsage{"DifferenceNegative",
                   {Capture, "-o", "page.png", "--engine", "phase-correlation", "--borders",
                    "--difference-threshold=-1"},
                   "from 0 to 255, not '-1'"},
        WrongUsage{"TooManyNeighbors",
                   {Capture, "-o", "page.png", "--engine", "phase-correlation", "--borders",
                    "--neighbor-threshold", "9"},
                   "from 0 to 8, not '9'"},
        WrongUsage{"NeighborsInWords",
                   {Capture, "-o", "page.png", "--engine", "phase-correlation", "--borders",
                    "--neighbor-threshold", "few"},
                   "from 0 to 8, not 'few'"},
        WrongUsage{"ThresholdWithoutBorders",
                   {Capture, "-o", "page.png", "--difference-threshold", "10"},
                   "requires --borders"},
        WrongUsage{"LimitInWords",
                   {Capture, "-o", "page.png", "--memory-limit", "much"},
                   "such as 200MiB or 1G, not 'much'"},
        WrongUsage{"LimitNegative",
                   {Capture, "-o", "page.png", "--memory-limit=-1"},
                   "such as 200MiB or 1G, not '-1'"},
        WrongUsage{"LimitOfUnknownUnit",
                   {Capture, "-o", "page.png", "--memory-limit", "1Q"},
                   "such as 200MiB or 1G, not '1Q'"},
        WrongUsage{"LimitTooLarge",
                   {Capture, "-o", "page.png", "--memory-limit", "99999999999G"},
                   "such as 200MiB or 1G"},
        WrongUsage{"LimitEmpty",
                   {Capture, "-o", "page.png", "--memory-limit", ""},
                   "such as 200MiB or 1G, not ''"},
        WrongUsage{"SpillFolderMissing",
                   {Capture, "-o", "page.png", "--memory-limit", "1M", "--spill-folder", "nowhere"},
                   "'nowhere'"},
        WrongUsage{"SpillFolderIsAFile",
                   {Capture, "-o", "page.png", "--memory-limit", "1M", "--spill-folder", Capture},
                   "'capture-1.png'"},
        WrongUsage{"SpillFolderWithoutLimit",
                   {Capture, "-o", "page.png", "--spill-folder", "."},
                   "requires --memory-limit"},
        WrongUsage{"PreviewSizeWithoutPreview",
                   {Capture, "-o", "page.png", "--preview-size", "10x10"},
                   "requires --preview"},
        WrongUsage{"PreviewSizeOfOneSide",
                   {Capture, "-o", "page.png", "--preview", "p.png", "--preview-size", "250"},
                   "width and height such as 250x250"},
        WrongUsage{"PreviewSizeOfZero",
                   {Capture, "-o", "page.png", "--preview", "p.png", "--preview-size", "0x10"},
                   "from 1 to 10000, not '0'"},
        WrongUsage{"PreviewSizeInWords",
                   {Capture, "-o", "page.png", "--preview", "p.png", "--preview-size", "10xa"},
                   "from 1 to 10000, not 'a'"},
        WrongUsage{"PreviewOfUnknownFormat",
                   {Capture, "-o", "page.png", "--preview", "p.gif"},
                   "use one of .png"},
        WrongUsage{"PreviewInAMissingFolder",
                   {Capture, "-o", "page.png", "--preview", "nowhere/p.png"},
                   "no folder 'nowhere'"},
        WrongUsage{"PreviewOverImage",
                   {Capture, "-o", "page.png", "--preview", "page.png"},
                   "choose different names"},
        WrongUsage{"ReportOverImage",
                   {Capture, "-o", "page.png", "--report", "./page.png"},
                   "choose different names"}),
    [](const auto& usage) { return std::string(usage.param.name); });

TEST_F(Arguments, HelpTellsEveryOption) {
  const Testing::ProgramResult result = Run({"--help"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.standardError, "");
  for (const char* const option : {"--output",
                                   "--engine",
                                   "--fixed",
                                   "--joins",
                                   "--strict",
                                   "--split",
                                   "--background",
                                   "--jpeg-quality",
                                   "--png-level",
                                   "--orientation",
                                   "--consistent",
                                   "--threads",
                                   "--keep-repeats",
                                   "--borders",
                                   "--difference-threshold",
                                   "--neighbor-threshold",
                                   "--memory-limit",
                                   "--spill-folder",
                                   "--preview",
                                   "--preview-size",
                                   "--report",
                                   "--quiet",
                                   "--version"}) {
    EXPECT_THAT(result.standardOutput, HasSubstr(option));
  }
}

TEST_F(Arguments, VersionIsTheProjects) {
  const Testing::ProgramResult result = Run({"--version"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.standardOutput, "velscroll " VELSCROLL_VERSION "\n");
}

TEST_F(Arguments, OneLineTellsWhatWasWritten) {
  WriteScroll();
  const Testing::ProgramResult result =
      Run({"capture-1.png", "capture-2.png", "capture-3.png", "-o", "page.png"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.standardOutput, "page.png: 96 x 140 pixels from 3 captures\n");
  EXPECT_EQ(result.standardError, "");
}

TEST_F(Arguments, QuietPrintsNoSummary) {
  WriteScroll();
  for (const char* const quiet : {"-q", "--quiet", "-qq"}) {
    const Testing::ProgramResult result = Run({"capture-*.png", quiet, "-o", "page.png"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.standardOutput, "");
    EXPECT_EQ(result.standardError, "");
  }
}

TEST_F(Arguments, QuietOnceKeepsWarningsAndTwiceDropsThem) {
  WriteCapture("1.png", 0);
  WriteCapture("2.png", 250);
  const auto errorsWith = [this](std::vector<std::string> quiet) {
    quiet.insert(quiet.end(), {"1.png", "2.png", "-o", "page.png"});
    return Run(quiet).standardError;
  };
  EXPECT_THAT(errorsWith({"-q"}), HasSubstr("warning"));
  EXPECT_EQ(errorsWith({"-qq"}), "");
  EXPECT_EQ(errorsWith({"--quiet", "--quiet"}), "");
}

TEST_F(Arguments, DefaultsAreTheLibrarysButForTheThreads) {
  WriteScroll();
  const auto settings = Report({"capture-*.png"}).at("settings");
  EXPECT_EQ(settings.at("orientation"), "both");
  EXPECT_EQ(settings.at("consistent"), false);
  EXPECT_EQ(settings.at("threads"), std::thread::hardware_concurrency());
  EXPECT_EQ(settings.at("keepRepeats"), false);
}

TEST_F(Arguments, SettingsReachTheReport) {
  WriteScroll();
  const auto settings = Report({"capture-*.png", "--orientation", "vertical", "--consistent",
                                "--threads", "3", "--keep-repeats"})
                            .at("settings");
  EXPECT_EQ(settings.at("orientation"), "vertical");
  EXPECT_EQ(settings.at("consistent"), true);
  EXPECT_EQ(settings.at("threads"), 3);
  EXPECT_EQ(settings.at("keepRepeats"), true);
}

TEST_F(Arguments, OrientationLimitsTheMotion) {
  WriteCapture("a.png", 0, 0);
  WriteCapture("b.png", 20, 30);
  const auto motion = [this](const std::string& orientation) {
    return Report({"a.png", "b.png", "--engine", "phase-correlation", "--orientation", orientation})
        .at("captures")
        .at(1)
        .at("translation");
  };
  EXPECT_EQ(motion("both"), (nlohmann::json{{"rows", -20}, {"columns", -30}}));
  EXPECT_EQ(motion("vertical").at("columns"), 0);
  EXPECT_EQ(motion("horizontal").at("rows"), 0);
}

/// The last capture shows two motions at once, the one that is not the step before a little more.
TEST_F(Arguments, ConsistentPrefersTheStepBefore) {
  WriteCapture("a.png", 0);
  WriteCapture("b.png", 30);
  cv::Mat last = page(cv::Rect({0, 60}, Testing::CaptureSize)).clone();
  const int otherColumns = 52;
  page(cv::Rect(0, 50, otherColumns, last.rows)).copyTo(last.colRange(0, otherColumns));
  WriteImage("c.png", last);
  const auto lastMotion = [this](std::vector<std::string> options) {
    options.insert(options.end(), {"a.png", "b.png", "c.png", "--engine", "phase-correlation"});
    return Report(options).at("captures").at(2).at("translation").at("rows");
  };
  EXPECT_EQ(lastMotion({}), -20);
  EXPECT_EQ(lastMotion({"--consistent"}), -30);
}

TEST_F(Arguments, OfTheSameOptionTheLastOneCounts) {
  WriteScroll();
  EXPECT_EQ(Run({"capture-*.png", "-o", "a.jpg", "-o", "b.jpg"}).status, 0);
  EXPECT_THAT(Names(), ::testing::Contains("b.jpg"));
  EXPECT_THAT(Names(), ::testing::Not(::testing::Contains("a.jpg")));
}

TEST_F(Arguments, AFileWithADashInFrontFollowsTwoDashes) {
  WriteCapture("-a.png", 0);
  const Testing::ProgramResult result = Run({"-o", "page.png", "--", "-a.png"});
  EXPECT_EQ(result.status, 0) << result.standardError;
}

}  // namespace
}  // namespace ScrollingCapture
