#include <gtest/gtest.h>
#include <testkit/MatrixTesting.h>
#include <testkit/pages/Page.h>
#include <testkit/references/ReferenceDetector.h>

#include <VelScrollingCapture/detection/phase/internal/PairDetection.h>

namespace ScrollingCapture {
namespace {

using Testing::ReferenceDetector;
using Testing::SameBits;

const cv::Mat& Page() {
  static const cv::Mat page = Testing::TextPage({160, 200});
  return page;
}

cv::Mat Earlier() { return Page()(cv::Rect(20, 30, 90, 80)); }
cv::Mat Later() { return Page()(cv::Rect(27, 51, 90, 80)); }

class PairDetectionOfOrientation : public testing::TestWithParam<ScrollOrientation> {
 protected:
  const PairDetection detection{GetParam()};
  const ReferenceDetector reference{GetParam()};
};

TEST_P(PairDetectionOfOrientation, FindsWhatTheWholeSurfaceHolds) {
  EXPECT_EQ(detection.Detect(Earlier(), Later()), reference.DetectTranslation(Earlier(), Later()));
}

TEST_P(PairDetectionOfOrientation, FindsTheAlternativeThatTheWholeSurfaceHolds) {
  Translation alternative(9, 9);
  Translation expected;
  EXPECT_EQ(detection.DetectWithAlternative(Earlier(), Later(), alternative),
            reference.DetectTranslationWithAlternative(Earlier(), Later(), expected));
  EXPECT_EQ(alternative, expected);
}

TEST_P(PairDetectionOfOrientation, MakesTheBitsOfTheWholeSurface) {
  cv::Size size;
  EXPECT_TRUE(SameBits(detection.Surface(Earlier(), Later()),
                       reference.CalculateCorrelationMatrix(Earlier(), Later(), size)));
}

INSTANTIATE_TEST_SUITE_P(Orientations, PairDetectionOfOrientation,
                         testing::Values(Vertical, Horizontal, Both));

TEST(PairDetection, TakesPeaksInTheFirstHalfForMotionsUpAndLeft) {
  const cv::Size size(100, 60);
  EXPECT_EQ(TranslationOfPeak({29, 49}, size, Both), Translation(-29, -49));
  EXPECT_EQ(TranslationOfPeak({30, 50}, size, Both), Translation(30, 50));
  EXPECT_EQ(TranslationOfPeak({30, 50}, size, Vertical), Translation(30, 0));
  EXPECT_EQ(TranslationOfPeak({30, 50}, size, Horizontal), Translation(0, 50));
}

}  // namespace
}  // namespace ScrollingCapture
