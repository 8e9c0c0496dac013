#include <limits>

#include <gtest/gtest.h>
#include <testkit/MatrixTesting.h>
#include <testkit/pages/Scenes.h>

#include <VelScrollingCapture/matching/internal/Comparison.h>
#include <VelScrollingCapture/matching/internal/PixelKeys.h>

namespace ScrollingCapture {
namespace {

using namespace Testing;

/// The same pixel by pixel.
Comparison CompareSlowly(const cv::Mat& earlier, const cv::Mat& later, const cv::Point& motion) {
  Comparison comparison;
  comparison.unequal = cv::Mat::zeros(CellsOf(later.size()), CV_8UC1);
  for (int y = 0; y < later.rows; ++y) {
    for (int x = 0; x < later.cols; ++x) {
      const std::int64_t row = std::int64_t{y} - motion.y;
      const std::int64_t column = std::int64_t{x} - motion.x;
      if (row >= 0 && row < earlier.rows && column >= 0 && column < earlier.cols) {
        const cv::Point other(static_cast<int>(column), static_cast<int>(row));
        const bool isEqual = later.at<int>(y, x) == earlier.at<int>(other);
        comparison.equal += static_cast<int>(isEqual);
        comparison.unequal.at<unsigned char>(y / CellSide, x / CellSide) +=
            static_cast<unsigned char>(!isEqual);
      }
    }
  }
  return comparison;
}

class ComparisonMotions : public testing::TestWithParam<cv::Point> {
 protected:
  ComparisonMotions() {
    cv::RNG random(1);
    random.fill(earlier, cv::RNG::UNIFORM, 0, 2);
    random.fill(later, cv::RNG::UNIFORM, 0, 2);
  }

  cv::Mat earlier{61, 93, CV_32SC1};
  cv::Mat later{61, 93, CV_32SC1};
};

TEST_P(ComparisonMotions, CountEveryPixelWithAllVectors) {
  const Comparison expected = CompareSlowly(earlier, later, GetParam());
  for (const Vectors vectors : {Vectors::Plain, Vectors::Widest}) {
    const Comparison comparison = Compare(earlier, later, GetParam(), vectors);
    EXPECT_EQ(comparison.equal, expected.equal);
    EXPECT_TRUE(SameBits(comparison.unequal, expected.unequal));
    EXPECT_EQ(comparison.Compared() - comparison.equal, cvRound(cv::sum(expected.unequal)[0]));
  }
}

TEST_P(ComparisonMotions, AddUpToAllPixelsWhateverWasComparedBefore) {
  const Comparison all = Compare(earlier, later, GetParam(), Vectors::Widest);
  for (const cv::Rect& content : {cv::Rect(0, 0, 93, 61), cv::Rect(0, 9, 93, 40),
                                  cv::Rect(5, 0, 80, 61), cv::Rect(11, 3, 50, 50), cv::Rect()}) {
    const Comparison some = Compare(earlier, later, GetParam(), content, Vectors::Widest);
    const Agreement agreement = AgreementOf(earlier, later, GetParam(), some);
    EXPECT_EQ(agreement.compared, all.Compared());
    EXPECT_EQ(agreement.equal, all.equal);
  }
}

INSTANTIATE_TEST_SUITE_P(
    All, ComparisonMotions,
    testing::Values(cv::Point(0, 0), cv::Point(8, 16), cv::Point(3, 5), cv::Point(-13, 7),
                    cv::Point(90, -58), cv::Point(-92, 60), cv::Point(93, 0), cv::Point(0, -61),
                    cv::Point(std::numeric_limits<int>::max(), std::numeric_limits<int>::min())));

TEST(Comparison, KnowsTheOverlapInTheLaterCapture) {
  EXPECT_EQ(OverlapOf({100, 50}, {0, -20}), cv::Rect(0, 0, 100, 30));
  EXPECT_EQ(OverlapOf({100, 50}, {30, 20}), cv::Rect(30, 20, 70, 30));
  EXPECT_TRUE(OverlapOf({100, 50}, {0, 50}).empty());
}

}  // namespace
}  // namespace ScrollingCapture
