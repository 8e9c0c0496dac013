#include <limits>
#include <optional>
#include <ostream>
#include <string>

#include <gtest/gtest.h>
#include <testkit/references/ReferenceCropping.h>

#include <VelScrollingCapture/seams/Seam.h>

namespace ScrollingCapture {
namespace {

constexpr int Lowest = std::numeric_limits<int>::min();
constexpr int Highest = std::numeric_limits<int>::max();

struct Cut {
  std::string name;
  cv::Size capture;
  Translation translation;
  CutLine line;
};

void PrintTo(const Cut& cut, std::ostream* stream) { *stream << cut.name; }

class CutLineAfter : public testing::TestWithParam<Cut> {};

TEST_P(CutLineAfter, HalvesTheOverlapAndLeavesTheNewContent) {
  const CutLine line = CutLineOf(GetParam().translation, GetParam().capture);
  EXPECT_EQ(line.first, GetParam().line.first);
  EXPECT_EQ(line.second, GetParam().line.second);
  EXPECT_EQ(line.towardsOrigin, GetParam().line.towardsOrigin);
}

INSTANTIATE_TEST_SUITE_P(
    Translations, CutLineAfter,
    testing::Values(
        Cut{"Up", {50, 100}, {-40, 0}, {{0, 30}, {49, 30}, true}},
        Cut{"UpByAnOddOverlap", {50, 101}, {-40, 0}, {{0, 30}, {49, 30}, true}},
        Cut{"Down", {50, 100}, {40, 0}, {{0, 70}, {49, 70}, false}},
        Cut{"Left", {100, 50}, {0, -40}, {{30, 0}, {30, 49}, true}},
        Cut{"Right", {100, 50}, {0, 40}, {{70, 0}, {70, 49}, false}},
        Cut{"NotAtAll", {100, 50}, {0, 0}, {{50, 0}, {50, 49}, true}},
        Cut{"DownAndRight", {50, 100}, {10, 20}, {{20, 99}, {49, 10}, false}},
        Cut{"UpAndLeft", {50, 100}, {-10, -20}, {{0, 90}, {30, 0}, true}},
        Cut{"DownAndLeft", {50, 100}, {10, -20}, {{0, 10}, {30, 99}, false}},
        Cut{"UpAndRight", {50, 100}, {-10, 20}, {{20, 0}, {49, 90}, true}},
        Cut{"PastTheCapture", {50, 100}, {-110, 0}, {{0, -5}, {49, -5}, true}},
        Cut{"FartherThanAnyCapture", {50, 100}, {Lowest, 1}, {{1, 0}, {49, 100 + Lowest}, true}}),
    [](const auto& test) { return test.param.name; });

TEST(Seam, KeepsWhatIsBelowOrAboveALevelLine) {
  const std::optional<Seam> below = Seam::Along({{0, 1}, {4, 1}, true}, {5, 3});
  ASSERT_TRUE(below);
  EXPECT_TRUE(below->KeptColumns(0).empty());
  EXPECT_TRUE(below->KeptColumns(1).empty());
  EXPECT_EQ(below->KeptColumns(2), cv::Range(0, 5));

  const std::optional<Seam> above = Seam::Along({{0, 1}, {4, 1}, false}, {5, 3});
  ASSERT_TRUE(above);
  EXPECT_EQ(above->KeptColumns(0), cv::Range(0, 5));
  EXPECT_TRUE(above->KeptColumns(1).empty());
  EXPECT_TRUE(above->KeptColumns(2).empty());
}

TEST(Seam, KeepsWhatIsRightOrLeftOfAnUprightLine) {
  const std::optional<Seam> right = Seam::Along({{2, 0}, {2, 1}, true}, {5, 2});
  const std::optional<Seam> left = Seam::Along({{2, 0}, {2, 1}, false}, {5, 2});
  ASSERT_TRUE(right && left);
  for (const int row : {0, 1}) {
    EXPECT_EQ(right->KeptColumns(row), cv::Range(3, 5));
    EXPECT_EQ(left->KeptColumns(row), cv::Range(0, 2));
  }
}

TEST(Seam, KeepsTheNewContentOfAScrollInBothDirections) {
  const cv::Size capture(4, 4);
  const std::optional<Seam> seam = Seam::Along(CutLineOf({-1, -1}, capture), capture);
  ASSERT_TRUE(seam);
  EXPECT_TRUE(seam->KeptColumns(0).empty());
  EXPECT_EQ(seam->KeptColumns(1), cv::Range(3, 4));
  EXPECT_EQ(seam->KeptColumns(2), cv::Range(2, 4));
  EXPECT_EQ(seam->KeptColumns(3), cv::Range(1, 4));
}

TEST(Seam, IsNoneWhenALineLeavesTheImage) {
  const cv::Size image(5, 3);
  for (const cv::Point& outside : {cv::Point(-1, 0), {0, -1}, {5, 0}, {0, 3}, {Highest, Lowest}}) {
    EXPECT_FALSE(Seam::Along({outside, {1, 1}, true}, image)) << outside;
    EXPECT_FALSE(Seam::Along({{1, 1}, outside, true}, image)) << outside;
  }
  EXPECT_FALSE(Seam::Along({{0, 0}, {0, 0}, true}, {0, 0}));
}

/// The columns of a row that are not transparent, which must be one run.
cv::Range VisibleColumns(const cv::Mat& image, int row) {
  cv::Range visible(0, 0);
  for (int column = 0; column < image.cols; ++column) {
    if (image.at<uchar>(row, column) != 0) {
      EXPECT_TRUE(visible.empty() || visible.end == column) << "two runs in row " << row;
      visible = {visible.empty() ? column : visible.start, column + 1};
    }
  }
  return visible;
}

TEST(Seam, KeepsWhatARandomLineDrawnPixelByPixelLeaves) {
  cv::RNG random(4);
  for (int i = 0; i < 400; ++i) {
    const cv::Size size(random.uniform(1, 60), random.uniform(1, 60));
    const CutLine line = {{random.uniform(0, size.width), random.uniform(0, size.height)},
                          {random.uniform(0, size.width), random.uniform(0, size.height)},
                          random.uniform(0, 2) == 1};
    cv::Mat drawn(size, CV_8UC1, cv::Scalar(9));
    Testing::ReferenceClipCorner(drawn, line.first, line.second, line.towardsOrigin);
    const std::optional<Seam> seam = Seam::Along(line, size);
    ASSERT_TRUE(seam);
    for (int row = 0; row < size.height; ++row) {
      const cv::Range kept = seam->KeptColumns(row);
      const cv::Range visible = VisibleColumns(drawn, row);
      ASSERT_TRUE(kept == visible || (kept.empty() && visible.empty()))
          << size << " " << line.first << " " << line.second << " row " << row;
    }
  }
}

TEST(Seam, GoesOnWhereSinglePrecisionHasNoNextColumn) {
  constexpr int Columns = (1 << 24) + 4;
  const std::optional<Seam> seam = Seam::Along({{0, 0}, {Columns - 1, 1}, true}, {Columns, 2});
  ASSERT_TRUE(seam);
  EXPECT_TRUE(seam->KeptColumns(0).empty());
}

}  // namespace
}  // namespace ScrollingCapture
