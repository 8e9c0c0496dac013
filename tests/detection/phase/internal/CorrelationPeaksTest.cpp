#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <VelScrollingCapture/detection/phase/internal/CorrelationPeaks.h>

namespace ScrollingCapture {
namespace {

using testing::ElementsAre;

/// Searches a surface of rows of three, handed over row by row from the last to the first.
PeakSearch SearchFromBelow(const std::vector<cv::Vec3f>& surface, bool wantsAlternative) {
  PeakSearch search(wantsAlternative);
  for (size_t row = surface.size(); row-- > 0;) {
    cv::Mat values(1, 3, CV_32FC1);
    values.at<cv::Vec3f>(0, 0) = surface[row];
    search.Add(static_cast<int>(row), values);
  }
  return search;
}

TEST(CorrelationPeaks, AreFoundInWhateverOrderRowsCome) {
  const PeakSearch search = SearchFromBelow({{1, 2, 3}, {4, 9, 5}, {8, 7, 6}}, true);
  EXPECT_EQ(search.Highest().value, 9);
  EXPECT_THAT(search.Highest().position, ElementsAre(1, 1));
  EXPECT_THAT(search.Alternative().position, ElementsAre(2, 0));
}

TEST(CorrelationPeaks, AreTheFirstInReadingOrderAmongEqualValues) {
  const PeakSearch search = SearchFromBelow({{0, 0, 5}, {5, 5, 0}, {5, 0, 0}}, true);
  EXPECT_THAT(search.Highest().position, ElementsAre(0, 2));
  EXPECT_THAT(search.Alternative().position, ElementsAre(1, 0));
}

TEST(CorrelationPeaks, MayBothLieInOneRow) {
  const PeakSearch search = SearchFromBelow({{0, 0, 0}, {9, 8, 0}, {1, 0, 0}}, true);
  EXPECT_THAT(search.Highest().position, ElementsAre(1, 0));
  EXPECT_THAT(search.Alternative().position, ElementsAre(1, 1));
}

TEST(CorrelationPeaks, HaveAnAlternativeAboveHalfOfTheHighestOnly) {
  EXPECT_THAT(SearchFromBelow({{8, 0, 0}, {0, 4, 0}}, true).Alternative().position,
              ElementsAre(0, 0));
  EXPECT_THAT(SearchFromBelow({{8, 0, 0}, {0, 4.001F, 0}}, true).Alternative().position,
              ElementsAre(1, 1));
}

TEST(CorrelationPeaks, AreLookedForAsLongAsABoundReachesThem) {
  const PeakSearch best = SearchFromBelow({{8, 0, 0}}, false);
  EXPECT_TRUE(best.MayFindMore(8));
  EXPECT_FALSE(best.MayFindMore(7.99));
  const PeakSearch both = SearchFromBelow({{8, 0, 0}}, true);
  EXPECT_TRUE(both.MayFindMore(4));
  EXPECT_FALSE(both.MayFindMore(3.99));
  EXPECT_TRUE(PeakSearch(false).MayFindMore(-100)) << "nothing has been seen yet";
}

}  // namespace
}  // namespace ScrollingCapture
