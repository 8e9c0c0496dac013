#include <gmock/gmock.h>
#include <opencv2/imgcodecs.hpp>

#include "ProgramTest.h"

namespace ScrollingCapture {
namespace {

using nlohmann::json;
using ::testing::HasSubstr;

class StandardOutput : public Testing::ProgramTest {
 protected:
  void SetUp() override { WriteScroll(); }
};

TEST_F(StandardOutput, TakesTheImageAsPngAndNothingElse) {
  const Testing::ProgramResult result = Run({"capture-*.png", "-o", "-"});
  EXPECT_EQ(result.status, 0);
  const std::vector<unsigned char> file(result.standardOutput.begin(), result.standardOutput.end());
  const cv::Mat image = cv::imdecode(file, cv::IMREAD_UNCHANGED);
  ASSERT_EQ(image.size(), cv::Size(96, 140));
  EXPECT_EQ(cv::norm(image, page(cv::Rect(0, 0, 96, 140)), cv::NORM_INF), 0);
  EXPECT_EQ(result.standardError, "-: 96 x 140 pixels from 3 captures\n");
}

TEST_F(StandardOutput, TakesTheReportAndNothingElse) {
  const Testing::ProgramResult result = Run({"capture-*.png", "-o", "page.png", "--report", "-"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(json::parse(result.standardOutput).at("captures").size(), 3U);
  EXPECT_THAT(result.standardError, HasSubstr("page.png: 96 x 140 pixels"));
  EXPECT_EQ(ReadImage("page.png").rows, 140);
}

TEST_F(StandardOutput, GetsNothingFromARunThatFails) {
  const Testing::ProgramResult result =
      Run({"capture-*.png", "-o", "-", "--report", "missing/page.json"});
  EXPECT_EQ(result.status, 2);
  Testing::ExpectOneLine(result);
}

TEST_F(StandardOutput, ThatNobodyReadsLeavesNothingBehind) {
  const auto before = Names();
  Testing::ProgramSetting setting;
  setting.hasNoReader = true;
  const Testing::ProgramResult result =
      Run({"capture-*.png", "-o", "-", "--report", "page.json"}, setting);
  EXPECT_EQ(result.status, 1);
  Testing::ExpectOneLine(result);
  EXPECT_THAT(result.standardError, HasSubstr("cannot write to standard output: Broken pipe"));
  EXPECT_EQ(Names(), before);
}

}  // namespace
}  // namespace ScrollingCapture
