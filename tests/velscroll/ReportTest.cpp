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
  // The last capture passes the upper edge by 15 rows, which moves the edge by its whole step.
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
  EXPECT_EQ(captures.at(1).at("overlap"), nullptr);
  EXPECT_EQ(captures.at(2).at("translation"), Motion(-30, 0));
  EXPECT_EQ(captures.at(2).at("place"), Place(30, 0));
}

TEST_F(Report, TellsThatAKeptRepeatIsLeftOut) {
  WriteCapture("1.png", 0);
  WriteCapture("2.png", 0);
  WriteCapture("3.png", 30);
  const json report = ProgramTest::Report({"1.png", "2.png", "3.png", "--keep-repeats"});
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
                                               {"translation", nullptr},
                                               {"place", Place(0, 0)},
                                               {"overlap", nullptr}}));
  EXPECT_EQ(report.at("result").at("height"), Testing::CaptureSize.height);
}

TEST_F(Report, OfRepeatsOnlyKeepsTheFirst) {
  WriteCapture("1.png", 0);
  const json report = ProgramTest::Report({"1.png", "1.png", "1.png"});
  EXPECT_THAT(States(report), ElementsAre("kept", "repeated", "repeated"));
}

TEST_F(Report, TellsHowWellNeighboursAgree) {
  WriteScroll();
  const json overlap = ProgramTest::Report({"capture-*.png"}).at("captures").at(2).at("overlap");
  EXPECT_EQ(overlap.at("rows"), 50);
  EXPECT_EQ(overlap.at("columns"), 96);
  EXPECT_NEAR(overlap.at("correlation"), 1.0, 1e-6);
  EXPECT_EQ(overlap.at("agrees"), true);
}

TEST_F(Report, TellsCapturesWithoutOverlap) {
  WriteCapture("1.png", 0);
  WriteCapture("2.png", 30);
  WriteCapture("far.png", 250);
  const Testing::ProgramResult result =
      Run({"1.png", "2.png", "far.png", "-o", "page.png", "--report", "page.json"});
  EXPECT_EQ(result.status, 0);
  const std::string warning = "'2.png' and 'far.png' do not seem to overlap";
  EXPECT_THAT(result.standardError, HasSubstr("velscroll: warning: " + warning));
  const json report = json::parse(ReadBytes("page.json"));
  EXPECT_EQ(report.at("captures").at(1).at("overlap").at("agrees"), true);
  EXPECT_EQ(report.at("captures").at(2).at("overlap").at("agrees"), false);
  ASSERT_EQ(report.at("warnings").size(), 1U);
  EXPECT_THAT(std::string(report.at("warnings").at(0)), HasSubstr(warning));
}

TEST_F(Report, OnCapturesOfOneColourComparesNothing) {
  WriteImage("1.png", cv::Mat(40, 40, CV_8UC3, cv::Scalar::all(10)));
  WriteImage("2.png", cv::Mat(40, 40, CV_8UC3, cv::Scalar::all(200)));
  const json report = ProgramTest::Report({"1.png", "2.png"});
  EXPECT_EQ(report.at("captures").at(1).at("overlap").at("correlation"), nullptr);
}

TEST_F(Report, SurvivesFileNamesThatAreNoUtf8) {
  WriteCapture("caf\xe9.png", 0);
  const json report = ProgramTest::Report({"caf\xe9.png"});
  EXPECT_EQ(report.at("captures").at(0).at("file"), "caf\xEF\xBF\xBD.png");
}

}  // namespace
}  // namespace ScrollingCapture
