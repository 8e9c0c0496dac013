#include <gmock/gmock.h>

#include "ProgramTest.h"

namespace ScrollingCapture {
namespace {

using nlohmann::json;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class Report : public Testing::ProgramTest {
 protected:
  static std::vector<std::string> States(const json& report) {
    std::vector<std::string> states;
    for (const json& capture : report.at("captures")) {
      states.push_back(capture.at("state"));
    }
    return states;
  }

  static json Proven(json motion, int pixels) {
    motion.update({{"verdict", "proven"},
                   {"compared", pixels},
                   {"equal", pixels},
                   {"alternatives", json::array()}});
    return motion;
  }

  static json Motion(int rows, int columns) { return {{"rows", rows}, {"columns", columns}}; }
  static json Place(int row, int column) { return {{"row", row}, {"column", column}}; }
};

TEST_F(Report, TellsTheResult) {
  WriteScroll();
  const json report = ProgramTest::Report({"capture-*.png"});
  EXPECT_EQ(report.at("version"), VELSCROLL_VERSION);
  EXPECT_EQ(report.at("result"), (json{{"file", "page.png"}, {"width", 96}, {"height", 140}}));
  EXPECT_THAT(report.at("warnings"), IsEmpty());
}

TEST_F(Report, TellsTheSecondsOfEveryStage) {
  WriteScroll();
  const json seconds = ProgramTest::Report({"capture-*.png"}).at("seconds");
  EXPECT_EQ(seconds.size(), 4U);
  for (const char* const stage : {"reading", "detection", "composing", "writing"}) {
    EXPECT_GT(seconds.at(stage), 0.0) << stage;
    EXPECT_LT(seconds.at(stage), 100.0) << stage;
  }
}

TEST_F(Report, TellsMotionAndPlaceOfEveryCapture) {
  WriteCapture("1.png", 100, 50);
  WriteCapture("2.png", 110, 80);
  WriteCapture("3.png", 85, 65);
  const json captures = ProgramTest::Report({"1.png", "2.png", "3.png"}).at("captures");
  EXPECT_EQ(captures.at(0).at("translation"), nullptr);
  EXPECT_EQ(captures.at(1).at("translation"), Motion(-10, -30));
  EXPECT_EQ(captures.at(2).at("translation"), Motion(25, 15));
  EXPECT_EQ(captures.at(0).at("place"), Place(15, 0));
  EXPECT_EQ(captures.at(1).at("place"), Place(25, 30));
  EXPECT_EQ(captures.at(2).at("place"), Place(0, 15));
}

TEST_F(Report, OfPhaseCorrelationMovesTheEdgeByTheWholeStepThatPassesIt) {
  WriteCapture("1.png", 100, 50);
  WriteCapture("2.png", 110, 80);
  WriteCapture("3.png", 85, 65);
  const json captures =
      ProgramTest::Report({"1.png", "2.png", "3.png", "--engine", "phase-correlation"})
          .at("captures");
  EXPECT_EQ(captures.at(0).at("place"), Place(25, 0));
  EXPECT_EQ(captures.at(1).at("place"), Place(35, 30));
  EXPECT_EQ(captures.at(2).at("place"), Place(10, 15));
}

TEST_F(Report, PlacesAreWhereTheCapturesLieInTheResult) {
  WriteCapture("1.png", 100, 50);
  WriteCapture("2.png", 70, 50);
  const json report = ProgramTest::Report({"1.png", "2.png"});
  const json place = report.at("captures").at(0).at("place");
  const cv::Mat result = ReadImage("page.png");
  const cv::Point last(Testing::CaptureSize.width - 1, Testing::CaptureSize.height - 1);
  EXPECT_EQ(result.at<cv::Vec3b>(int{place.at("row")} + last.y, int{place.at("column")} + last.x),
            page.at<cv::Vec3b>(100 + last.y, 50 + last.x));
}

TEST_F(Report, TellsRepeats) {
  WriteCapture("1.png", 0);
  WriteCapture("2.png", 0);
  WriteCapture("3.png", 30);
  const json report = ProgramTest::Report({"1.png", "2.png", "3.png"});
  EXPECT_THAT(States(report), ElementsAre("kept", "repeated", "kept"));
  const json& captures = report.at("captures");
  EXPECT_EQ(captures.at(1).at("translation"), Motion(0, 0));
  EXPECT_EQ(captures.at(1).at("place"), Place(0, 0));
  EXPECT_EQ(captures.at(1).at("join"), Proven(Motion(0, 0), 96 * 80));
  EXPECT_EQ(captures.at(2).at("translation"), Motion(-30, 0));
  EXPECT_EQ(captures.at(2).at("place"), Place(30, 0));
}

TEST_F(Report, TellsThatPhaseCorrelationLeavesAKeptRepeatOut) {
  WriteCapture("1.png", 0);
  WriteCapture("2.png", 0);
  WriteCapture("3.png", 30);
  const json report = ProgramTest::Report(
      {"1.png", "2.png", "3.png", "--keep-repeats", "--engine", "phase-correlation"});
  EXPECT_THAT(States(report), ElementsAre("kept", "left out", "kept"));
  EXPECT_EQ(report.at("captures").at(1).at("translation"), Motion(0, 0));
  EXPECT_EQ(report.at("captures").at(2).at("place"), Place(30, 0));
}

TEST_F(Report, OfASingleCaptureHasNoMotion) {
  WriteCapture("1.png", 0);
  const json report = ProgramTest::Report({"1.png"});
  ASSERT_EQ(report.at("captures").size(), 1U);
  EXPECT_EQ(report.at("captures").at(0), (json{{"file", "1.png"},
                                               {"state", "kept"},
                                               {"part", 1},
                                               {"translation", nullptr},
                                               {"place", Place(0, 0)},
                                               {"join", nullptr}}));
  EXPECT_EQ(report.at("result").at("height"), Testing::CaptureSize.height);
}

TEST_F(Report, OfRepeatsOnlyKeepsTheFirst) {
  WriteCapture("1.png", 0);
  const json report = ProgramTest::Report({"1.png", "1.png", "1.png"});
  EXPECT_THAT(States(report), ElementsAre("kept", "repeated", "repeated"));
}

TEST_F(Report, TellsWhatThePixelsSayOfEachJoin) {
  WriteScroll();
  for (const char* const engine : {"exact", "phase-correlation"}) {
    const json captures = ProgramTest::Report({"capture-*.png", "--engine", engine}).at("captures");
    EXPECT_EQ(captures.at(0).at("join"), nullptr);
    EXPECT_EQ(captures.at(2).at("join"), Proven(Motion(-30, 0), 50 * 96)) << engine;
  }
}

TEST_F(Report, TellsEngineAndFixedParts) {
  WriteScroll();
  const json exact = ProgramTest::Report({"capture-*.png"}).at("settings");
  EXPECT_EQ(exact.at("engine"), "exact");
  EXPECT_EQ(exact.at("fixed"), "once");
  const json correlated =
      ProgramTest::Report({"capture-*.png", "--engine", "phase-correlation"}).at("settings");
  EXPECT_EQ(correlated.at("engine"), "phase-correlation");
  EXPECT_EQ(correlated.at("fixed"), nullptr);
}

TEST_F(Report, TellsTheFilesOfASplitPicture) {
  WriteScroll();
  const json report = ProgramTest::Report({"capture-*.png", "--split", "100"});
  EXPECT_EQ(report.at("result"), (json{{"file", "page.png"},
                                       {"width", 96},
                                       {"height", 140},
                                       {"pieces", {"page-1.png", "page-2.png"}}}));
  EXPECT_EQ(ReadImage("page-1.png").rows + ReadImage("page-2.png").rows, 140);
}

TEST_F(Report, TellsWhatPhaseCorrelationHasJoinedAgainstThePixels) {
  WriteCapture("1.png", 0);
  WriteCapture("2.png", 30);
  WriteCapture("far.png", 250);
  const Testing::ProgramResult result =
      Run({"1.png", "2.png", "far.png", "-o", "page.png", "--report", "page.json", "--engine",
           "phase-correlation"});
  EXPECT_EQ(result.status, 0);
  const std::string warning = "'2.png' and 'far.png' do not seem to overlap";
  EXPECT_THAT(result.standardError, HasSubstr("velscroll: warning: " + warning));
  const json report = json::parse(ReadBytes("page.json"));
  EXPECT_EQ(report.at("captures").at(1).at("join").at("verdict"), "proven");
  EXPECT_EQ(report.at("captures").at(2).at("join").at("verdict"), "none");
  ASSERT_EQ(report.at("warnings").size(), 1U);
  EXPECT_THAT(std::string(report.at("warnings").at(0)), HasSubstr(warning));
}

TEST_F(Report, SurvivesFileNamesThatAreNoUtf8) {
  WriteCapture("caf\xe9.png", 0);
  const json report = ProgramTest::Report({"caf\xe9.png"});
  EXPECT_EQ(report.at("captures").at(0).at("file"), "caf\xEF\xBF\xBD.png");
}

}  // namespace
}  // namespace ScrollingCapture
