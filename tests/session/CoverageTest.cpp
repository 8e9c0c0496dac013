#include <gtest/gtest.h>

#include <VelScrollingCapture/session/internal/Coverage.h>

namespace ScrollingCapture {
namespace {

TEST(Coverage, OfPixelsNeedsFullAlphaEverywhere) {
  cv::Mat pixels(3, 4, CV_8UC4, cv::Scalar(1, 2, 3, 255));
  EXPECT_TRUE(Covers(pixels));
  pixels.at<cv::Vec4b>(2, 3)[3] = 254;
  EXPECT_FALSE(Covers(pixels));
}

struct Arrangement {
  const char* name;
  cv::Size picture;
  std::vector<Place> places;
  bool covers;
};
void PrintTo(const Arrangement& layout, std::ostream* stream) { *stream << layout.name; }

class CoverageOfCaptures : public testing::TestWithParam<Arrangement> {};

/// Captures are 10 columns wide and 5 rows high.
TEST_P(CoverageOfCaptures, LeavesNoGap) {
  EXPECT_EQ(Cover(GetParam().picture, {10, 5}, GetParam().places), GetParam().covers);
}

INSTANTIATE_TEST_SUITE_P(
    Layouts, CoverageOfCaptures,
    testing::Values(Arrangement{"One", {10, 5}, {{0, 0}}, true},
                    Arrangement{"Column", {10, 12}, {{0, 0}, {4, 0}, {7, 0}}, true},
                    Arrangement{"ColumnBackwards", {10, 12}, {{7, 0}, {4, 0}, {0, 0}}, true},
                    Arrangement{"Touching", {10, 10}, {{5, 0}, {0, 0}}, true},
                    Arrangement{"GapOfARow", {10, 11}, {{0, 0}, {6, 0}}, false},
                    Arrangement{"Row", {25, 5}, {{0, 0}, {0, 15}, {0, 9}}, true},
                    Arrangement{"GapOfAColumn", {21, 5}, {{0, 0}, {0, 11}}, false},
                    Arrangement{"Diagonal", {12, 6}, {{0, 0}, {1, 2}}, false},
                    Arrangement{"Square", {12, 6}, {{0, 0}, {1, 2}, {0, 2}, {1, 0}}, true},
                    Arrangement{"Twice", {10, 5}, {{0, 0}, {0, 0}}, true}),
    [](const auto& test) { return std::string(test.param.name); });

}  // namespace
}  // namespace ScrollingCapture
