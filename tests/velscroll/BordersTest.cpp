#include <gmock/gmock.h>

#include "ProgramTest.h"

namespace ScrollingCapture {
namespace {

using nlohmann::json;
using ::testing::HasSubstr;

constexpr int Toolbar = 12;
constexpr int StatusBar = 8;

class Borders : public Testing::ProgramTest {
 protected:
  /// Captures of the page between a toolbar and a status bar that stay put.
  void WriteBorderedScroll() const {
    for (int i = 0; i < 3; ++i) {
      cv::Mat capture(Testing::CaptureSize, CV_8UC3, cv::Scalar(40, 90, 140));
      const cv::Range content(Toolbar, capture.rows - StatusBar);
      page(cv::Rect(0, 20 * i, capture.cols, content.size())).copyTo(capture.rowRange(content));
      WriteImage("capture-" + std::to_string(i) + ".png", capture);
    }
  }

  /// The options that borders take, and what else is given.
  static std::vector<std::string> WithBorders(std::vector<std::string> arguments) {
    arguments.insert(arguments.end(), {"--engine", "phase-correlation", "--borders"});
    return arguments;
  }

  static json Bars() {
    return {{"contentBox", {{"row", Toolbar}, {"column", 0}, {"rows", 60}, {"columns", 96}}},
            {"top", Toolbar},
            {"bottom", StatusBar},
            {"left", 0},
            {"right", 0}};
  }
};

TEST_F(Borders, AreLaidOnceAroundWhatScrolls) {
  WriteBorderedScroll();
  const auto result = Run(WithBorders({"capture-*.png", "-o", "page.png"}));
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.standardError, "");
  const cv::Mat image = ReadImage("page.png");
  ASSERT_EQ(image.size(), cv::Size(96, 120));
  cv::Mat shown;
  cv::extractChannel(image.rowRange(Toolbar, 112), shown, 1);
  cv::Mat expected;
  cv::extractChannel(page(cv::Rect(0, 0, 96, 100)), expected, 1);
  EXPECT_EQ(cv::norm(shown, expected, cv::NORM_INF), 0);
}

TEST_F(Borders, AreInTheReport) {
  WriteBorderedScroll();
  const json report = Report(WithBorders({"capture-*.png"}));
  EXPECT_EQ(report.at("borders"), Bars());
  EXPECT_EQ(report.at("settings").at("borders"),
            (json{{"differenceThreshold", 10}, {"neighborThreshold", 2}}));
  EXPECT_EQ(report.at("captures").at(2).at("place"), (json{{"row", 40}, {"column", 0}}));
}

TEST_F(Borders, AreNullInTheReportUnlessAskedFor) {
  WriteBorderedScroll();
  const json report = Report({"capture-*.png", "--engine", "phase-correlation"});
  EXPECT_EQ(report.at("borders"), nullptr);
  EXPECT_EQ(report.at("settings").at("borders"), nullptr);
}

TEST_F(Borders, ThatAreNotThereAreTold) {
  WriteScroll();
  const auto result = Run(WithBorders({"capture-*.png", "-o", "page.png"}));
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.standardOutput, HasSubstr("no borders found"));
  EXPECT_EQ(result.standardError, "");
}

TEST_F(Borders, AreShownOnceByExactJoinsUnlessTheyAreToBeKept) {
  constexpr int ContentRows = 140;
  constexpr int Step = 40;
  const cv::Size size(200, Toolbar + ContentRows);
  for (int i = 0; i < 4; ++i) {
    cv::Mat capture(size, CV_8UC3, cv::Scalar(40, 90, 140));
    page(cv::Rect(0, Step * i, size.width, ContentRows))
        .copyTo(capture.rowRange(Toolbar, size.height));
    WriteImage("capture-" + std::to_string(i) + ".png", capture);
  }
  ASSERT_EQ(Run({"capture-*.png", "-o", "once.png"}).status, 0);
  ASSERT_EQ(Run({"capture-*.png", "-o", "keep.png", "--fixed", "keep"}).status, 0);
  const cv::Mat expected = page(cv::Rect(0, 0, size.width, ContentRows + 3 * Step));
  const cv::Range content(Toolbar, Toolbar + expected.rows);
  EXPECT_EQ(cv::norm(ReadImage("once.png").rowRange(content), expected, cv::NORM_INF), 0);
  EXPECT_GT(cv::norm(ReadImage("keep.png").rowRange(content), expected, cv::NORM_INF), 0);
}

TEST_F(Borders, FollowTheThresholds) {
  WriteBorderedScroll();
  // No pixel changes by more than 255, and none has more than 8 neighbours.
  for (const std::vector<std::string>& threshold :
       {std::vector<std::string>{"--difference-threshold", "255"}, {"--neighbor-threshold", "8"}}) {
    std::vector<std::string> arguments = WithBorders({"capture-*.png"});
    arguments.insert(arguments.end(), threshold.begin(), threshold.end());
    EXPECT_EQ(Report(arguments).at("borders"), nullptr);
  }
}

}  // namespace
}  // namespace ScrollingCapture
