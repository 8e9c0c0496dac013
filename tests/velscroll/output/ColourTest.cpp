#include <gmock/gmock.h>
#include <velscroll/output/Colour.h>
#include <velscroll/terminal/Failure.h>

namespace ScrollingCapture {
namespace {

using Program::BadInput;
using Program::Colour;
using Program::LayOn;
using Program::ParseColour;
using ::testing::HasSubstr;

struct Notation {
  const char* name;
  const char* text;
  cv::Vec3i colour;
};

void PrintTo(const Notation& notation, std::ostream* stream) { *stream << notation.text; }

class ColourNotation : public ::testing::TestWithParam<Notation> {};

TEST_P(ColourNotation, IsRead) {
  const Colour colour = ParseColour("--background", GetParam().text);
  EXPECT_EQ(cv::Vec3i(colour.red, colour.green, colour.blue), GetParam().colour);
}

INSTANTIATE_TEST_SUITE_P(Notations, ColourNotation,
                         ::testing::Values(Notation{"Name", "white", {255, 255, 255}},
                                           Notation{"NameInCapitals", "Navy", {0, 0, 128}},
                                           Notation{"LongForm", "#12aBf0", {0x12, 0xAB, 0xF0}},
                                           Notation{"ShortForm", "#1af", {0x11, 0xAA, 0xFF}}),
                         [](const auto& notation) { return std::string(notation.param.name); });

class NoColour : public ::testing::TestWithParam<const char*> {};

TEST_P(NoColour, IsRefused) {
  try {
    ParseColour("--background", GetParam());
    ADD_FAILURE() << "taken for a colour";
  } catch (const BadInput& failure) {
    EXPECT_THAT(failure.what(), HasSubstr("--background takes a colour"));
    EXPECT_THAT(failure.what(), HasSubstr("'" + std::string(GetParam()) + "'"));
  }
}

INSTANTIATE_TEST_SUITE_P(Texts, NoColour,
                         ::testing::Values("", "#", "#1", "#12345", "#1234567", "#12345g", "#+12",
                                           "#-12345", "transparent", "whites", " white"));

TEST(Colour, ShowsThroughAsFarAsAPixelIsTransparent) {
  cv::Mat rows(1, 3, CV_8UC4);
  rows.at<cv::Vec4b>(0, 0) = {10, 20, 30, 255};
  rows.at<cv::Vec4b>(0, 1) = {10, 20, 30, 51};
  rows.at<cv::Vec4b>(0, 2) = {0, 0, 0, 0};
  const cv::Mat laid = LayOn({100, 0, 255}, rows);
  ASSERT_EQ(laid.type(), CV_8UC3);
  EXPECT_EQ(laid.at<cv::Vec3b>(0, 0), cv::Vec3b(10, 20, 30));
  EXPECT_EQ(laid.at<cv::Vec3b>(0, 1), cv::Vec3b(90, 20, 234));
  EXPECT_EQ(laid.at<cv::Vec3b>(0, 2), cv::Vec3b(100, 0, 255));
}

}  // namespace
}  // namespace ScrollingCapture
