#include <gmock/gmock.h>
#include <opencv2/imgproc.hpp>
#include <testkit/MatrixTesting.h>

#include "ProgramTest.h"

namespace ScrollingCapture {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;

class OutputFormat : public Testing::ProgramTest {
 protected:
  cv::Mat Capture() const { return page(cv::Rect({0, 0}, Testing::CaptureSize)).clone(); }
};

class LosslessFormat : public OutputFormat, public ::testing::WithParamInterface<const char*> {};

TEST_P(LosslessFormat, KeepsEveryPixel) {
  WriteScroll();
  const std::string output = std::string("page.") + GetParam();
  EXPECT_EQ(Run({"capture-*.png", "-o", output}).status, 0);
  EXPECT_TRUE(Testing::SameBits(ReadImage(output), page(cv::Rect(0, 0, 96, 140)).clone()));
}

INSTANTIATE_TEST_SUITE_P(Extensions, LosslessFormat,
                         ::testing::Values("png", "PNG", "tif", "tiff", "bmp", "webp"),
                         [](const auto& extension) { return std::string(extension.param); });

class AlphaFormat : public OutputFormat, public ::testing::WithParamInterface<const char*> {};

TEST_P(AlphaFormat, KeepsWhatNoCaptureShowsTransparent) {
  WriteCapture("a.png", 0, 0);
  WriteCapture("b.png", 20, 30);
  const std::string output = std::string("page.") + GetParam();
  EXPECT_EQ(Run({"a.png", "b.png", "-o", output}).status, 0);
  const cv::Mat result = ReadImage(output);
  ASSERT_EQ(result.type(), CV_8UC4);
  EXPECT_EQ(result.at<cv::Vec4b>(0, 0)[3], 255);
  EXPECT_EQ(result.at<cv::Vec4b>(0, result.cols - 1), cv::Vec4b(0, 0, 0, 0));
  EXPECT_EQ(result.at<cv::Vec4b>(result.rows - 1, 0), cv::Vec4b(0, 0, 0, 0));
}

INSTANTIATE_TEST_SUITE_P(Extensions, AlphaFormat, ::testing::Values("png", "tif", "webp"),
                         [](const auto& extension) { return std::string(extension.param); });

class OpaqueFormat : public OutputFormat, public ::testing::WithParamInterface<const char*> {};

TEST_P(OpaqueFormat, IsWhiteWhereNoCaptureShowsAnything) {
  cv::Mat capture(40, 40, CV_8UC4, cv::Scalar(0, 0, 0, 0));
  capture.colRange(0, 20).setTo(cv::Scalar(0, 0, 200, 255));
  WriteImage("capture.png", capture);
  const std::string output = std::string("page.") + GetParam();
  EXPECT_EQ(Run({"capture.png", "-o", output}).status, 0);
  const cv::Mat result = ReadImage(output);
  ASSERT_EQ(result.type(), CV_8UC3);
  EXPECT_GT(result.at<cv::Vec3b>(20, 35)[0], 250);
  EXPECT_GT(result.at<cv::Vec3b>(20, 35)[2], 250);
  EXPECT_LT(result.at<cv::Vec3b>(20, 5)[0], 10);
  EXPECT_NEAR(result.at<cv::Vec3b>(20, 5)[2], 200, 5);
}

INSTANTIATE_TEST_SUITE_P(Extensions, OpaqueFormat, ::testing::Values("bmp", "jpg", "jpeg"),
                         [](const auto& extension) { return std::string(extension.param); });

TEST_F(OutputFormat, WithoutAlphaMixesWhiteInWhereACaptureIsHalfTransparent) {
  WriteImage("capture.png", cv::Mat(4, 4, CV_8UC4, cv::Scalar(200, 100, 0, 51)));
  EXPECT_EQ(Run({"capture.png", "-o", "page.bmp"}).status, 0);
  EXPECT_EQ(ReadImage("page.bmp").at<cv::Vec3b>(0, 0), cv::Vec3b(244, 224, 204));
}

struct Excess {
  const char* name;
  cv::Size size;
  std::string output;
  const char* limit;
  const char* advice;
};

void PrintTo(const Excess& excess, std::ostream* stream) { *stream << excess.name; }

class TooLargeForFormat : public OutputFormat, public ::testing::WithParamInterface<Excess> {};

TEST_P(TooLargeForFormat, IsToldWithAFormatThatWouldDo) {
  const Excess& excess = GetParam();
  WriteImage("capture.bmp", cv::Mat(excess.size, CV_8UC1, cv::Scalar(100)));
  WriteBytes(excess.output, "the old file");
  const Testing::ProgramResult result =
      Run({"capture.bmp", "-o", excess.output, "--report", "page.json"});
  EXPECT_EQ(result.status, 1);
  Testing::ExpectOneLine(result);
  EXPECT_THAT(result.standardError, AllOf(HasSubstr("'" + excess.output + "'"),
                                          HasSubstr(excess.limit), HasSubstr(excess.advice)));
  EXPECT_EQ(ReadBytes(excess.output), "the old file");
  EXPECT_THAT(Names(), ::testing::UnorderedElementsAre("capture.bmp", excess.output));
}

INSTANTIATE_TEST_SUITE_P(
    Limits, TooLargeForFormat,
    ::testing::Values(
        Excess{"JpegRows", {1, 65501}, "p.jpg", "65500 rows or columns", "--split 65500"},
        Excess{"JpegColumns", {65501, 1}, "p.jpeg", "65500 rows or columns", "(.png)"},
        Excess{"WebPRows", {1, 16384}, "p.webp", "16383 rows or columns", "(.png)"},
        Excess{"WebPColumns", {16384, 1}, "p.webp", "16383 rows or columns", "(.png)"}),
    [](const auto& excess) { return std::string(excess.param.name); });

struct Fit {
  const char* name;
  cv::Size size;
  std::string output;
};

void PrintTo(const Fit& fit, std::ostream* stream) { *stream << fit.name; }

class LargestForFormat : public OutputFormat, public ::testing::WithParamInterface<Fit> {};

TEST_P(LargestForFormat, IsWritten) {
  WriteImage("capture.bmp", cv::Mat(GetParam().size, CV_8UC1, cv::Scalar(100)));
  const Testing::ProgramResult result = Run({"capture.bmp", "-o", GetParam().output});
  EXPECT_EQ(result.status, 0) << result.standardError;
  EXPECT_EQ(ReadImage(GetParam().output).size(), GetParam().size);
}

INSTANTIATE_TEST_SUITE_P(Limits, LargestForFormat,
                         ::testing::Values(Fit{"PngRows", {1, 1000000}, "p.png"},
                                           Fit{"TiffRows", {1, 1000001}, "p.tif"},
                                           Fit{"BmpRows", {1, 1000001}, "p.bmp"},
                                           Fit{"JpegRows", {1, 65500}, "p.jpg"},
                                           Fit{"WebPColumns", {16383, 1}, "p.webp"}),
                         [](const auto& fit) { return std::string(fit.param.name); });

}  // namespace
}  // namespace ScrollingCapture
