#include <gmock/gmock.h>

#include "ProgramTest.h"

namespace ScrollingCapture {
namespace {

using ::testing::HasSubstr;

class Memory : public Testing::ProgramTest {
 protected:
  void ExpectFailure(const std::vector<std::string>& captures, rlim_t limit,
                     const std::string& complaint) const {
    const auto before = Names();
    std::vector<std::string> arguments = captures;
    arguments.insert(arguments.end(),
                     {"-o", "page.png", "--threads", "1", "--engine", "phase-correlation"});
    Testing::ProgramSetting setting;
    setting.memoryLimit = limit;
    const Testing::ProgramResult result = Run(arguments, setting);
    EXPECT_EQ(result.status, 1);
    Testing::ExpectOneLine(result);
    EXPECT_THAT(result.standardError, HasSubstr(complaint));
    EXPECT_EQ(Names(), before);
  }
};

constexpr rlim_t MiB = rlim_t{1} << 20U;

/// Captures that march along a diagonal need far more room together than one by one.
TEST_F(Memory, ShortOfTheResultIsTold) {
  const cv::Size size(600, 600);
  const cv::Rect firstCorner(0, 0, 150, 150);
  const cv::Rect lastCorner(450, 450, 150, 150);
  cv::RNG random(7);
  cv::Mat corner(firstCorner.size(), CV_8UC1, cv::Scalar(0));
  std::vector<std::string> names;
  for (int i = 0; i < 46; ++i) {
    cv::Mat capture(size, CV_8UC1);
    random.fill(capture, cv::RNG::UNIFORM, 0, 256);
    corner.copyTo(capture(firstCorner));
    corner = capture(lastCorner);
    names.push_back("c" + std::to_string(i) + ".bmp");
    WriteImage(names.back(), capture);
  }
  ExpectFailure(names, 1400 * MiB, "not enough memory for the stitched image");
}

TEST_F(Memory, ShortOfTheDetectionIsTold) {
  cv::Mat large(4000, 4000, CV_8UC1, cv::Scalar(0));
  WriteImage("1.png", large);
  large.rowRange(0, 2000).setTo(200);
  WriteImage("2.png", large);
  ExpectFailure({"1.png", "2.png"}, 600 * MiB, "not enough memory");
}

TEST_F(Memory, ShortOfACaptureIsTold) {
  WriteImage("1.png", cv::Mat(20000, 20000, CV_8UC1, cv::Scalar(0)));
  ExpectFailure({"1.png"}, 500 * MiB, "not enough memory");
}

}  // namespace
}  // namespace ScrollingCapture
