#include <string>

#include <gtest/gtest.h>
#include <opencv2/core.hpp>
#include <testkit/MatrixTesting.h>
#include <testkit/OpenDetector.h>
#include <testkit/pages/Page.h>
#include <testkit/references/ReferenceDetector.h>

namespace ScrollingCapture {
namespace {

using Testing::NoiseCapture;
using Testing::OpenDetector;
using Testing::PlainCapture;
using Testing::ReferenceDetector;
using Testing::TextPage;

/// A capture of one column, grey levels from top to bottom.
cv::Mat Column(std::initializer_list<int> levels) {
  cv::Mat capture(static_cast<int>(levels.size()), 1, CV_8UC4);
  int row = 0;
  for (const int level : levels) {
    capture.row(row++).setTo(cv::Scalar(level, level, level, 255));
  }
  return capture;
}

struct Motion {
  std::string name;
  int orientation;
  cv::Point windowMotion;
  Translation translation;
};

void PrintTo(const Motion& motion, std::ostream* stream) { *stream << motion.name; }

class PhaseCorrelationTranslationDetectorMotion : public testing::TestWithParam<Motion> {
 protected:
  void SetUp() override {
    const cv::Mat page = TextPage({300, 280});
    const cv::Rect window(100, 90, 100, 100);
    first = page(window);
    second = page(window + GetParam().windowMotion);
  }

  OpenDetector detector{static_cast<ScrollOrientation>(GetParam().orientation)};
  cv::Mat first;
  cv::Mat second;
};

TEST_P(PhaseCorrelationTranslationDetectorMotion, IsTheMotionOfTheContent) {
  EXPECT_EQ(detector.DetectTranslation(first, second), GetParam().translation);
}

TEST_P(PhaseCorrelationTranslationDetectorMotion, IsTheSameWithAnAlternative) {
  Translation alternative;
  EXPECT_EQ(detector.DetectTranslationWithAlternative(first, second, alternative),
            GetParam().translation);
}

INSTANTIATE_TEST_SUITE_P(Motions, PhaseCorrelationTranslationDetectorMotion,
                         testing::Values(Motion{"NoMotion", 2, {0, 0}, {0, 0}},
                                         Motion{"VerticalUp", 0, {0, 40}, {-40, 0}},
                                         Motion{"VerticalDown", 0, {0, -40}, {40, 0}},
                                         Motion{"HorizontalLeft", 1, {40, 0}, {0, -40}},
                                         Motion{"HorizontalRight", 1, {-40, 0}, {0, 40}},
                                         Motion{"BothUpAndLeft", 2, {25, 30}, {-30, -25}},
                                         Motion{"BothDownAndRight", 2, {-25, -30}, {30, 25}},
                                         Motion{"MoreThanHalfOfTheCapture", 0, {0, 60}, {-60, 0}},
                                         Motion{"VerticalIgnoresSidewaysMotion", 0, {9, 0}, {0, 0}},
                                         Motion{"HorizontalIgnoresMotionUp", 1, {0, 9}, {0, 0}},
                                         Motion{"ThreeIgnoresAllMotion", 3, {7, 9}, {0, 0}},
                                         Motion{"SevenIgnoresAllMotion", 7, {7, 9}, {0, 0}},
                                         Motion{"MinusOneIgnoresAllMotion", -1, {7, 9}, {0, 0}}),
                         [](const auto& instance) { return instance.param.name; });

TEST(PhaseCorrelationTranslationDetectorPair, GivesTheFirstOfSeveralHighestValuesInRowMajorOrder) {
  // Black captures have a surface of zeros: every element is the highest.
  for (const cv::Size size : {cv::Size(20, 10), cv::Size(5, 700), cv::Size(700, 5)}) {
    const cv::Mat black = PlainCapture(size, 0);
    EXPECT_EQ(OpenDetector(Both).DetectTranslation(black, black), Translation(0, 0)) << size;
  }
}

/// Tiny captures have surfaces of small whole numbers with many equal values.
TEST(PhaseCorrelationTranslationDetectorPair, ChoosesLikeTheReferenceAmongEqualValues) {
  for (const ScrollOrientation orientation : {Vertical, Horizontal, Both}) {
    OpenDetector detector(orientation);
    const ReferenceDetector reference(orientation);
    for (unsigned int seed = 0; seed < 300; ++seed) {
      const cv::Size size(1 + static_cast<int>(seed % 5), 1 + static_cast<int>(seed % 7));
      const cv::Mat first = NoiseCapture(size, 2 * seed + 1);
      const cv::Mat second = NoiseCapture(size, 2 * seed + 2);
      EXPECT_EQ(detector.DetectTranslation(first, second),
                reference.DetectTranslation(first, second))
          << "size " << size << ", seed " << seed;
      Translation alternative(99, 99);
      Translation expectedAlternative;
      EXPECT_EQ(detector.DetectTranslationWithAlternative(first, second, alternative),
                reference.DetectTranslationWithAlternative(first, second, expectedAlternative));
      EXPECT_EQ(alternative, expectedAlternative) << "size " << size << ", seed " << seed;
    }
  }
}

TEST(PhaseCorrelationTranslationDetectorPair, ChoosesLikeTheReferenceForUnrelatedCaptures) {
  for (const ScrollOrientation orientation : {Vertical, Horizontal, Both}) {
    OpenDetector detector(orientation);
    const ReferenceDetector reference(orientation);
    for (unsigned int seed = 0; seed < 10; ++seed) {
      const cv::Mat first = NoiseCapture({130, 90}, 2 * seed + 1);
      const cv::Mat second = NoiseCapture({130, 90}, 2 * seed + 2);
      Translation alternative;
      Translation expectedAlternative;
      EXPECT_EQ(detector.DetectTranslationWithAlternative(first, second, alternative),
                reference.DetectTranslationWithAlternative(first, second, expectedAlternative));
      EXPECT_EQ(alternative, expectedAlternative);
      EXPECT_EQ(detector.DetectTranslation(first, second),
                reference.DetectTranslation(first, second));
    }
  }
}

/// From a clear motion to none at all: the peak sinks into what the rest of the surface holds.
TEST(PhaseCorrelationTranslationDetectorPair, ChoosesLikeTheReferenceHoweverWeakThePeakIs) {
  const cv::Mat page = TextPage({260, 300});
  const cv::Rect window(20, 20, 150, 110);
  const cv::Mat first = page(window);
  const cv::Mat moved = page(window + cv::Point(13, 37));
  for (const ScrollOrientation orientation : {Vertical, Horizontal, Both}) {
    OpenDetector detector(orientation);
    const ReferenceDetector reference(orientation);
    for (int percent = 0; percent <= 100; percent += 4) {
      cv::Mat second;
      cv::addWeighted(moved, 1 - percent / 100.0, NoiseCapture(window.size(), 5), percent / 100.0,
                      0, second);
      EXPECT_EQ(detector.DetectTranslation(first, second),
                reference.DetectTranslation(first, second))
          << percent << " % of noise";
      Translation alternative;
      Translation expectedAlternative;
      EXPECT_EQ(detector.DetectTranslationWithAlternative(first, second, alternative),
                reference.DetectTranslationWithAlternative(first, second, expectedAlternative));
      EXPECT_EQ(alternative, expectedAlternative) << percent << " % of noise";
    }
  }
}

/// Two motions of nearly equal weight, in different rows of the surface.
TEST(PhaseCorrelationTranslationDetectorPair, ChoosesLikeTheReferenceBetweenTwoMotions) {
  const cv::Mat page = TextPage({260, 300});
  const cv::Rect window(20, 20, 150, 110);
  const cv::Mat first = page(window);
  OpenDetector detector(Both);
  const ReferenceDetector reference(Both);
  for (int percent = 30; percent <= 70; percent += 2) {
    cv::Mat second;
    cv::addWeighted(page(window + cv::Point(3, 41)), percent / 100.0,
                    page(window + cv::Point(8, -15)), 1 - percent / 100.0, 0, second);
    Translation alternative;
    Translation expectedAlternative;
    EXPECT_EQ(detector.DetectTranslationWithAlternative(first, second, alternative),
              reference.DetectTranslationWithAlternative(first, second, expectedAlternative));
    EXPECT_EQ(alternative, expectedAlternative) << percent << " %";
    EXPECT_EQ(detector.DetectTranslation(first, second),
              reference.DetectTranslation(first, second));
  }
}

TEST(PhaseCorrelationTranslationDetectorPair, TakesCapturesWithGapsBetweenTheRows) {
  const cv::Mat page = TextPage({200, 200});
  const cv::Mat first = page(cv::Rect(10, 20, 90, 80));
  const cv::Mat second = page(cv::Rect(23, 51, 90, 80));
  ASSERT_FALSE(first.isContinuous());
  EXPECT_EQ(OpenDetector(Both).DetectTranslation(first, second), Translation(-31, -13));
}

TEST(PhaseCorrelationTranslationDetectorPair, PassesOnWhatOpenCVRejects) {
  const cv::Mat capture = NoiseCapture({40, 30}, 1);
  const cv::Mat smaller = NoiseCapture({40, 20}, 1);
  const cv::Mat grey(30, 40, CV_8UC1, cv::Scalar(0));
  OpenDetector detector(Both);
  for (const cv::Mat& wrong : {smaller, grey, cv::Mat()}) {
    Translation alternative(7, 9);
    EXPECT_THROW(detector.DetectTranslation(capture, wrong), cv::Exception);
    EXPECT_THROW(detector.DetectTranslationWithAlternative(wrong, capture, alternative),
                 cv::Exception);
    EXPECT_EQ(alternative, Translation(7, 9));
  }
}

TEST(PhaseCorrelationTranslationDetectorAlternative,
     IsTheBestWhenTheSecondValueIsExactlyHalfOfTheHighest) {
  // The surface over a transform of length 4 is 4, 2, 0, -2.
  const cv::Mat first = Column({10, 200});
  const cv::Mat second = Column({90, 100});
  cv::Size dftSize;
  const cv::Mat surface = OpenDetector(Vertical).CalculateCorrelationMatrix(first, second, dftSize);
  ASSERT_EQ(cv::countNonZero(surface != cv::Mat(cv::Vec4f(4, 2, 0, -2))), 0) << surface;

  Translation alternative(7, 9);
  EXPECT_EQ(OpenDetector(Vertical).DetectTranslationWithAlternative(first, second, alternative),
            Translation(0, 0));
  EXPECT_EQ(alternative, Translation(0, 0));
}

TEST(PhaseCorrelationTranslationDetectorAlternative,
     IsTheSecondWhenItsValueIsAboveHalfOfTheHighest) {
  // A page whose rows are drawn twice, four rows apart: two motions explain the second capture.
  const cv::Mat page = TextPage({160, 200});
  const cv::Mat first = page(cv::Rect(0, 40, 160, 100));
  const cv::Mat second = (page(cv::Rect(0, 60, 160, 100)) + page(cv::Rect(0, 70, 160, 100))) / 2;
  Translation alternative;
  const Translation best =
      OpenDetector(Vertical).DetectTranslationWithAlternative(first, second, alternative);
  Translation expected;
  EXPECT_EQ(best,
            ReferenceDetector(Vertical).DetectTranslationWithAlternative(first, second, expected));
  EXPECT_EQ(alternative, expected);
  EXPECT_NE(alternative, best);
}

TEST(PhaseCorrelationTranslationDetectorAlternative, MayBeAnImmediateNeighbourOfTheBest) {
  // Content between two rows: half of it moved by 20 rows, half by 21.
  const cv::Mat page = TextPage({160, 200});
  const cv::Mat first = page(cv::Rect(0, 40, 160, 100));
  const cv::Mat second = (page(cv::Rect(0, 60, 160, 100)) + page(cv::Rect(0, 61, 160, 100))) / 2;
  Translation alternative;
  const Translation best =
      OpenDetector(Vertical).DetectTranslationWithAlternative(first, second, alternative);
  EXPECT_EQ(std::abs(best.GetRows() - alternative.GetRows()), 1) << best << " " << alternative;
}

TEST(PhaseCorrelationTranslationDetectorAlternative, OfIdenticalCapturesIsNoMotion) {
  const cv::Mat capture = TextPage({100, 80});
  Translation alternative(7, 9);
  EXPECT_EQ(OpenDetector(Both).DetectTranslationWithAlternative(capture, capture, alternative),
            Translation(0, 0));
  EXPECT_EQ(alternative, Translation(0, 0));
}

TEST(PhaseCorrelationTranslationDetectorAlternative, OfBlackCapturesIsNoMotion) {
  const cv::Mat black = PlainCapture({20, 10}, 0);
  Translation alternative(7, 9);
  EXPECT_EQ(OpenDetector(Both).DetectTranslationWithAlternative(black, black, alternative),
            Translation(0, 0));
  EXPECT_EQ(alternative, Translation(0, 0));
}

}  // namespace
}  // namespace ScrollingCapture
