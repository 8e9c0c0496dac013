#include <fstream>

#include <gmock/gmock.h>
#include <opencv2/imgproc.hpp>

#include "ProgramTest.h"

namespace ScrollingCapture {
namespace {

using nlohmann::json;
using ::testing::AllOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

const std::vector<std::string> Engines = {"exact", "phase-correlation"};

class Joins : public Testing::ProgramTest {
 protected:
  /// Captures of rows that repeat every 16 rows: the motion may be any that differs by as many.
  void WriteRepeatingRows() {
    for (int row = 16; row + 16 <= page.rows; row += 16) {
      page.rowRange(0, 16).copyTo(page.rowRange(row, row + 16));
    }
    WriteScroll();
  }

  /// Captures 0 to 30 rows, and others far below.
  void WriteTwoParts() const {
    WriteCapture("1.png", 0);
    WriteCapture("2.png", 30);
    WriteCapture("3.png", 250);
    WriteCapture("4.png", 270);
  }

  Testing::ProgramResult Stitch(std::vector<std::string> arguments) const {
    arguments.insert(arguments.end(), {"-o", "page.png", "--report", "page.json"});
    return Run(arguments);
  }

  json WrittenReport() const { return json::parse(ReadBytes("page.json")); }
  void WriteReport(const std::string& name, const json& report) const {
    WriteBytes(name, report.dump());
  }
};

TEST_F(Joins, InDoubtAreTakenAndToldWithTheAlternatives) {
  WriteRepeatingRows();
  const Testing::ProgramResult result = Stitch({"capture-1.png", "capture-2.png"});
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.standardError,
              AllOf(HasSubstr("in doubt how 'capture-2.png' joins 'capture-1.png'"),
                    HasSubstr("0 columns was taken, but these explain both as well")));
  const json join = WrittenReport().at("captures").at(1).at("join");
  EXPECT_EQ(join.at("verdict"), "doubtful");
  EXPECT_THAT(join.at("alternatives"), Not(::testing::IsEmpty()));
  EXPECT_EQ((join.at("rows").get<int>() + 30) % 16, 0);
}

TEST_F(Joins, InDoubtAreToldWithTheNearestAlternativesOnly) {
  page.rowRange(40, 240).setTo(cv::Scalar::all(255));
  WriteCapture("1.png", 0);
  WriteCapture("2.png", 60);
  const Testing::ProgramResult result = Stitch({"1.png", "2.png"});
  EXPECT_EQ(result.status, 0);
  const json join = WrittenReport().at("captures").at(1).at("join");
  ASSERT_EQ(join.at("verdict"), "doubtful");
  const std::size_t alternatives = join.at("alternatives").size();
  ASSERT_GT(alternatives, 3);
  const int rows = join.at("rows").get<int>();
  const auto motion = [](int moved) { return std::to_string(moved) + " rows, 0 columns"; };
  EXPECT_THAT(
      result.standardError,
      HasSubstr("but these explain both as well: " + motion(rows - 1) + "; " + motion(rows - 2) +
                "; " + motion(rows - 3) + "; and " + std::to_string(alternatives - 3) + " more\n"));
}

TEST_F(Joins, ThatAreMissingLeaveThePictureInParts) {
  WriteTwoParts();
  const Testing::ProgramResult result = Stitch({"1.png", "2.png", "3.png", "4.png"});
  EXPECT_EQ(result.status, 3);
  EXPECT_EQ(result.standardOutput,
            "page-1.png: 96 x 110 pixels, page-2.png: 96 x 100 pixels from 4 captures\n");
  EXPECT_THAT(result.standardError, HasSubstr("nothing joins '3.png' to '2.png'"));
  EXPECT_THAT(Names(),
              AllOf(Contains("page-1.png"), Contains("page-2.png"), Not(Contains("page.png"))));
  EXPECT_EQ(cv::norm(ReadImage("page-2.png"), page(cv::Rect(0, 250, 96, 100)), cv::NORM_INF), 0);

  const json report = WrittenReport();
  EXPECT_EQ(report.at("result"), nullptr);
  EXPECT_EQ(report.at("parts"), (json{{{"file", "page-1.png"}, {"width", 96}, {"height", 110}},
                                      {{"file", "page-2.png"}, {"width", 96}, {"height", 100}}}));
  std::vector<int> parts;
  for (const json& capture : report.at("captures")) {
    parts.push_back(capture.at("part"));
  }
  EXPECT_THAT(parts, ElementsAre(1, 1, 2, 2));
  EXPECT_EQ(report.at("captures").at(2).at("join").at("verdict"), "none");
  EXPECT_EQ(report.at("captures").at(3).at("place"), (json{{"row", 20}, {"column", 0}}));
}

TEST_F(Joins, ThatALaterCaptureMakesLeaveOnePicture) {
  WriteCapture("1.png", 0);
  WriteCapture("2.png", 90);
  WriteCapture("3.png", 45);
  const Testing::ProgramResult result = Stitch({"1.png", "2.png", "3.png"});
  EXPECT_EQ(result.status, 0) << result.standardError;
  EXPECT_EQ(result.standardError, "");
  EXPECT_EQ(cv::norm(ReadImage("page.png"), page(cv::Rect(0, 0, 96, 170)), cv::NORM_INF), 0);
}

TEST_F(Joins, OfAScrollBackAreFound) {
  for (int i = 0; i < 5; ++i) {
    WriteCapture(std::to_string(i) + ".png", std::vector<int>{0, 40, 80, 5, 110}[i]);
  }
  const Testing::ProgramResult result = Stitch({"0.png", "1.png", "2.png", "3.png", "4.png"});
  EXPECT_EQ(result.status, 0) << result.standardError;
  EXPECT_EQ(cv::norm(ReadImage("page.png"), page(cv::Rect(0, 0, 96, 190)), cv::NORM_INF), 0);
}

TEST_F(Joins, ThatThePreviewCannotPlaceAreRemarkedOnInTheReportOnly) {
  WriteScroll();
  WriteCapture("far.png", 250);
  const std::vector<std::string> captures = {"capture-1.png", "capture-2.png", "far.png"};
  const std::string warning = Stitch(captures).standardError;
  ASSERT_THAT(WrittenReport().at("remarks"), ::testing::IsEmpty());
  std::vector<std::string> arguments = captures;
  arguments.insert(arguments.end(), {"--preview", "preview.png"});
  EXPECT_EQ(Stitch(arguments).standardError, warning);
  EXPECT_THAT(WrittenReport().at("remarks"), Not(::testing::IsEmpty()));
}

TEST_F(Joins, InPartsDoNotGoToStandardOutput) {
  WriteTwoParts();
  const Testing::ProgramResult result = Run({"2.png", "3.png", "-o", "-"});
  EXPECT_EQ(result.status, 2);
  Testing::ExpectOneLine(result);
  EXPECT_THAT(result.standardError, HasSubstr("2 parts, which cannot all go to standard output"));
}

TEST_F(Joins, InPartsAreNotWrittenOverCaptures) {
  WriteCapture("page-1.png", 0);
  WriteCapture("page-2.png", 250);
  const std::string first = ReadBytes("page-1.png");
  const Testing::ProgramResult result = Run({"page-1.png", "page-2.png", "-o", "page.png"});
  EXPECT_EQ(result.status, 1);
  Testing::ExpectOneLine(result);
  EXPECT_THAT(result.standardError, HasSubstr("over the capture 'page-1.png'"));
  EXPECT_EQ(ReadBytes("page-1.png"), first);
}

TEST_F(Joins, ThatAreNotSureFailWhereStrictlyAskedFor) {
  WriteTwoParts();
  for (const std::string& engine : Engines) {
    const auto before = Names();
    const Testing::ProgramResult result =
        Stitch({"1.png", "2.png", "3.png", "--strict", "--engine", engine});
    EXPECT_EQ(result.status, 1);
    Testing::ExpectOneLine(result);
    EXPECT_THAT(result.standardError, AllOf(HasSubstr("'3.png'"), HasSubstr("--strict")));
    EXPECT_EQ(Names(), before);
  }
}

TEST_F(Joins, InDoubtFailWhereStrictlyAskedFor) {
  WriteRepeatingRows();
  EXPECT_EQ(Stitch({"capture-1.png", "capture-2.png", "--strict"}).status, 1);
  EXPECT_THAT(Names(), Not(Contains("page.png")));
}

TEST_F(Joins, ThatAreSurePassStrictly) {
  WriteScroll();
  EXPECT_EQ(Stitch({"capture-*.png", "--strict"}).status, 0);
}

class CorrectedJoins : public Joins, public ::testing::WithParamInterface<std::string> {};

TEST_P(CorrectedJoins, AreTakenAndProven) {
  WriteRepeatingRows();
  const std::vector<std::string> arguments = {"capture-1.png", "capture-2.png", "--engine",
                                              GetParam()};
  ASSERT_EQ(Stitch(arguments).status, 0);
  json report = WrittenReport();
  report["captures"][1]["join"]["rows"] = -62;
  WriteReport("corrected.json", report);
  std::vector<std::string> corrected = arguments;
  corrected.insert(corrected.end(), {"--joins", "corrected.json"});
  ASSERT_EQ(Stitch(corrected).status, 0);
  const json join = WrittenReport().at("captures").at(1).at("join");
  EXPECT_EQ(join.at("rows"), -62);
  EXPECT_EQ(join.at("verdict"), "doubtful");
  EXPECT_EQ(ReadImage("page.png").rows, 80 + 62);
}

TEST_P(CorrectedJoins, ThatThePixelsContradictAreTakenAndTold) {
  WriteScroll();
  const std::vector<std::string> arguments = {"capture-1.png", "capture-2.png", "--engine",
                                              GetParam()};
  ASSERT_EQ(Stitch(arguments).status, 0);
  json report = WrittenReport();
  report["captures"][1]["join"]["rows"] = -20;
  WriteReport("corrected.json", report);
  std::vector<std::string> corrected = arguments;
  corrected.insert(corrected.end(), {"--joins", "corrected.json"});
  const Testing::ProgramResult result = Stitch(corrected);
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.standardError, HasSubstr("do not seem to overlap"));
  EXPECT_EQ(WrittenReport().at("captures").at(1).at("join").at("verdict"), "none");
  EXPECT_EQ(ReadImage("page.png").rows, 100);
}

INSTANTIATE_TEST_SUITE_P(Engines, CorrectedJoins, ::testing::ValuesIn(Engines),
                         [](const auto& engine) { return engine.param.substr(0, 5); });

TEST_F(Joins, ThatAReportDoesNotKnowAreFound) {
  WriteScroll();
  ASSERT_EQ(Stitch({"capture-*.png"}).status, 0);
  json report = WrittenReport();
  report["captures"][1]["join"] = nullptr;
  WriteReport("partly.json", report);
  ASSERT_EQ(Stitch({"capture-*.png", "--joins", "partly.json"}).status, 0);
  EXPECT_EQ(WrittenReport().at("captures").at(1).at("join").at("rows"), -30);
}

struct JourneyDown {
  const char* name;
  std::vector<int> rows;
};

class GivenBackJoins : public Joins, public ::testing::WithParamInterface<JourneyDown> {};

TEST_P(GivenBackJoins, MakeTheSamePictureWhenNobodyHasEditedThem) {
  std::vector<std::string> arguments;
  for (const int row : GetParam().rows) {
    arguments.push_back(std::to_string(arguments.size()) + ".png");
    WriteCapture(arguments.back(), row);
  }
  const Testing::ProgramResult first = Stitch(arguments);
  const json report = WrittenReport();
  WriteReport("unedited.json", report);
  arguments.insert(arguments.end(), {"--joins", "unedited.json"});
  const Testing::ProgramResult again = Stitch(arguments);
  EXPECT_EQ(again.status, first.status);
  EXPECT_EQ(again.standardOutput, first.standardOutput);
  EXPECT_EQ(again.standardError, first.standardError);
  EXPECT_EQ(WrittenReport().at("captures"), report.at("captures"));
}

INSTANTIATE_TEST_SUITE_P(Journeys, GivenBackJoins,
                         ::testing::Values(JourneyDown{"Down", {0, 30, 60}},
                                           JourneyDown{"WithAPartThatALaterCaptureJoins",
                                                       {0, 90, 45}},
                                           JourneyDown{"BackFurtherThanTheWindow", {0, 50, 100, 3}},
                                           JourneyDown{"BackToAnotherPart", {0, 30, 250, 20}}),
                         [](const auto& journey) { return std::string(journey.param.name); });

TEST_F(Joins, ThatAreMissingCanBePrescribed) {
  WriteCapture("1.png", 0);
  WriteCapture("2.png", 78);
  ASSERT_EQ(Stitch({"1.png", "2.png"}).status, 3) << "two rows are too few to go by";
  json report = WrittenReport();
  ASSERT_EQ(report["captures"][1]["join"]["verdict"], "none");
  report["captures"][1]["join"]["rows"] = -78;
  WriteReport("corrected.json", report);
  ASSERT_EQ(Stitch({"1.png", "2.png", "--joins", "corrected.json"}).status, 0);
  EXPECT_EQ(cv::norm(ReadImage("page.png"), page(cv::Rect(0, 0, 96, 158)), cv::NORM_INF), 0);
}

struct BadReport {
  const char* name;
  std::string content;
  const char* complaint;
};
void PrintTo(const BadReport& report, std::ostream* stream) { *stream << report.name; }

class BadReports : public Joins, public ::testing::WithParamInterface<BadReport> {};

TEST_P(BadReports, AreRefusedInOneLine) {
  WriteCapture("a.png", 0);
  WriteCapture("b.png", 30);
  WriteBytes("bad.json", GetParam().content);
  const auto before = Names();
  const Testing::ProgramResult result = Stitch({"a.png", "b.png", "--joins", "bad.json"});
  EXPECT_EQ(result.status, 2);
  Testing::ExpectOneLine(result);
  EXPECT_THAT(result.standardError, HasSubstr(GetParam().complaint));
  EXPECT_EQ(Names(), before);
}

std::string CaptureEntries(const std::string& first, const std::string& second) {
  return R"({"captures": [{"file": "a.png", "join": )" + first +
         R"(}, {"file": "b.png", "join": )" + second + "}]}";
}

INSTANTIATE_TEST_SUITE_P(
    Reports, BadReports,
    ::testing::Values(
        BadReport{"Empty", "", "'bad.json' has no captures to read joins from"},
        BadReport{"Damaged", "{\"captures\": [", "has no captures to read joins from"},
        BadReport{"WithoutCaptures", "{}", "has no captures to read joins from"},
        BadReport{"OfNumbers", "{\"captures\": [1, 2]}", "does not tell how 'a.png' is joined"},
        BadReport{"OfFewerCaptures", R"({"captures": [{"file": "a.png", "join": null}]})",
                  "is about other captures"},
        BadReport{"OfOtherCaptures",
                  R"({"captures": [{"file": "a.png", "join": null}, {"file": "c.png"}]})",
                  "is about other captures"},
        BadReport{"WithAMotionInWords",
                  CaptureEntries("null", R"({"verdict": "likely", "rows": "many"})"),
                  "does not tell how 'b.png' is joined"},
        BadReport{"WithAFraction",
                  CaptureEntries("null", R"({"verdict": "likely", "rows": -30.9, "columns": 0})"),
                  "does not tell how 'b.png' is joined"},
        BadReport{"WithATruthValue",
                  CaptureEntries("null", R"({"verdict": "likely", "rows": -30, "columns": false})"),
                  "does not tell how 'b.png' is joined"},
        BadReport{
            "WithAMotionThatNoIntTells",
            CaptureEntries("null", R"({"verdict": "likely", "rows": -4294967326, "columns": 0})"),
            "does not tell how 'b.png' is joined"},
        BadReport{
            "WithTheSmallestInt",
            CaptureEntries("null", R"({"verdict": "likely", "rows": -2147483648, "columns": 0})"),
            "does not tell how 'b.png' is joined"},
        BadReport{
            "WithTheLargestNumber",
            CaptureEntries("null",
                           R"({"verdict": "likely", "rows": 18446744073709551586, "columns": 0})"),
            "does not tell how 'b.png' is joined"},
        BadReport{"WithAMotionBeyondTheCapture",
                  CaptureEntries("null", R"({"verdict": "likely", "rows": -80, "columns": 0})"),
                  "leaves nothing in common"}),
    [](const auto& report) { return std::string(report.param.name); });

}  // namespace
}  // namespace ScrollingCapture
