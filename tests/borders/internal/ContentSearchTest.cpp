#include <optional>

#include <gtest/gtest.h>

#include <VelScrollingCapture/borders/internal/ContentSearch.h>

namespace ScrollingCapture {
namespace {

constexpr unsigned int DifferenceThreshold = 10;
constexpr unsigned int NeighborThreshold = 2;

/// Nothing but a block of content, 3 x 3 around a point.
class ContentSearchTest : public testing::Test {
 protected:
  void Mark(const cv::Point& centre, int difference = DifferenceThreshold + 1) {
    image(cv::Rect(centre - cv::Point(1, 1), cv::Size(3, 3))).setTo(difference);
  }

  cv::Mat image = cv::Mat::zeros(9, 700, CV_8UC1);
  const cv::Range everywhere{0, 700};
  const ContentSearch search{image, DifferenceThreshold, NeighborThreshold};
};

TEST_F(ContentSearchTest, FindsTheFirstAndTheLastColumnOfARow) {
  Mark({300, 4});
  Mark({520, 4});
  EXPECT_EQ(search.First(4, everywhere), 299);
  EXPECT_EQ(search.Last(4, everywhere), 521);
}

TEST_F(ContentSearchTest, FindsNothingInRowsWithoutContent) {
  Mark({300, 4});
  EXPECT_EQ(search.First(1, everywhere), std::nullopt);
  EXPECT_EQ(search.Last(1, everywhere), std::nullopt);
}

TEST_F(ContentSearchTest, LooksAtTheColumnsThatItIsToldOnly) {
  Mark({300, 4});
  EXPECT_EQ(search.First(4, {300, 700}), 300);
  EXPECT_EQ(search.Last(4, {0, 300}), 299);
  EXPECT_EQ(search.First(4, {302, 700}), std::nullopt);
  EXPECT_EQ(search.First(4, {300, 300}), std::nullopt);
}

TEST_F(ContentSearchTest, TakesOnlyPixelsAboveTheThresholdWithEnoughNeighbours) {
  Mark({300, 4}, DifferenceThreshold);
  EXPECT_EQ(search.First(4, everywhere), std::nullopt);
  image.setTo(0);
  image(cv::Rect(100, 4, 3, 1)).setTo(255);
  EXPECT_EQ(search.First(4, everywhere), std::nullopt) << "two neighbours at most";
  image.at<uchar>(5, 101) = 255;
  EXPECT_EQ(search.First(4, everywhere), 101) << "three neighbours";
}

TEST(ContentSearchOfOneRow, LeavesNeighboursToTheCaller) {
  cv::Mat row = cv::Mat::zeros(1, 20, CV_8UC1);
  row.at<uchar>(0, 7) = DifferenceThreshold + 1;
  const ContentSearch search(row, DifferenceThreshold, NeighborThreshold);
  EXPECT_EQ(search.First(0, {0, 20}), 7);
}

}  // namespace
}  // namespace ScrollingCapture
