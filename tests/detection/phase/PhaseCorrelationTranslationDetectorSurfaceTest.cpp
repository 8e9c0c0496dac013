#include <iostream>
#include <string>
#include <tuple>

#include <gtest/gtest.h>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#include <testkit/MatrixTesting.h>
#include <testkit/OpenDetector.h>
#include <testkit/StreamCapture.h>
#include <testkit/pages/Page.h>
#include <testkit/references/ReferenceDetector.h>

namespace ScrollingCapture {
namespace {

using Testing::NoiseCapture;
using Testing::OpenDetector;
using Testing::PlainCapture;
using Testing::ReferenceDetector;
using Testing::SameBits;
using Testing::TextPage;

const ScrollOrientation NoOrientation = static_cast<ScrollOrientation>(3);

cv::Mat GreyOf(const cv::Mat& capture) {
  cv::Mat grey;
  cv::cvtColor(capture, grey, cv::COLOR_RGBA2GRAY);
  return grey;
}

/// Compares size and bits of the library's surface with those of the reference.
void ExpectReferenceSurface(int orientationValue, const cv::Mat& first, const cv::Mat& second) {
  const auto orientation = static_cast<ScrollOrientation>(orientationValue);
  cv::Size dftSize;
  cv::Size expectedSize;
  const cv::Mat surface =
      OpenDetector(orientation).CalculateCorrelationMatrix(first, second, dftSize);
  const cv::Mat expected =
      ReferenceDetector(orientation).CalculateCorrelationMatrix(first, second, expectedSize);
  EXPECT_EQ(dftSize, expectedSize);
  EXPECT_EQ(surface.type(), CV_32FC1);
  EXPECT_TRUE(SameBits(surface, expected))
      << "orientation " << orientationValue << ", captures of " << first.size();
}

class PhaseCorrelationTranslationDetectorSurfaceBits
    : public testing::TestWithParam<std::tuple<int, cv::Size>> {
 protected:
  int Orientation() const { return std::get<0>(GetParam()); }
  cv::Size Size() const { return std::get<1>(GetParam()); }
};

TEST_P(PhaseCorrelationTranslationDetectorSurfaceBits, EqualTheReferenceForNoise) {
  ExpectReferenceSurface(Orientation(), NoiseCapture(Size(), 1), NoiseCapture(Size(), 2));
}

TEST_P(PhaseCorrelationTranslationDetectorSurfaceBits, EqualTheReferenceForAMovedPage) {
  const cv::Mat page = TextPage({Size().width + 7, Size().height + 5});
  const cv::Mat first = page(cv::Rect({0, 0}, Size()));
  const cv::Mat second = page(cv::Rect({7, 5}, Size()));
  ExpectReferenceSurface(Orientation(), first, second);
}

TEST_P(PhaseCorrelationTranslationDetectorSurfaceBits, EqualTheReferenceForIdenticalCaptures) {
  const cv::Mat capture = TextPage(Size());
  ExpectReferenceSurface(Orientation(), capture, capture);
}

TEST_P(PhaseCorrelationTranslationDetectorSurfaceBits, EqualTheReferenceForCapturesOfOneColour) {
  ExpectReferenceSurface(Orientation(), PlainCapture(Size(), 90), PlainCapture(Size(), 200));
  ExpectReferenceSurface(Orientation(), PlainCapture(Size(), 0), PlainCapture(Size(), 0));
  ExpectReferenceSurface(Orientation(), PlainCapture(Size(), 0), NoiseCapture(Size(), 3));
}

TEST_P(PhaseCorrelationTranslationDetectorSurfaceBits, EqualTheReferenceForThreeChannels) {
  cv::Mat first;
  cv::Mat second;
  cv::cvtColor(NoiseCapture(Size(), 4), first, cv::COLOR_RGBA2RGB);
  cv::cvtColor(NoiseCapture(Size(), 5), second, cv::COLOR_RGBA2RGB);
  ExpectReferenceSurface(Orientation(), first, second);
}

std::string NameOf(const testing::TestParamInfo<std::tuple<int, cv::Size>>& instance) {
  const auto& [orientation, size] = instance.param;
  const std::string sign = orientation < 0 ? "Minus" : "";
  return "Orientation" + sign + std::to_string(std::abs(orientation)) + "Size" +
         std::to_string(size.width) + "x" + std::to_string(size.height);
}

INSTANTIATE_TEST_SUITE_P(
    Sizes, PhaseCorrelationTranslationDetectorSurfaceBits,
    testing::Combine(testing::Values(-1, 0, 1, 2, 3, 7),
                     testing::Values(cv::Size(1, 1), cv::Size(2, 1), cv::Size(1, 2), cv::Size(2, 2),
                                     cv::Size(3, 3), cv::Size(1, 37), cv::Size(41, 1),
                                     cv::Size(2, 50), cv::Size(50, 2), cv::Size(5, 3),
                                     cv::Size(15, 9), cv::Size(64, 48), cv::Size(75, 45),
                                     cv::Size(97, 61), cv::Size(128, 3), cv::Size(135, 81),
                                     cv::Size(243, 125), cv::Size(320, 241))),
    NameOf);

TEST(PhaseCorrelationTranslationDetectorSurface, EqualsTheReferenceForLargeCaptures) {
  const cv::Mat page = TextPage({1280, 1500});
  for (const int orientation : {0, 1, 2, 3}) {
    ExpectReferenceSurface(orientation, page(cv::Rect(0, 0, 1280, 720)),
                           page(cv::Rect(0, 311, 1280, 720)));
  }
}

/// Every transform size up to a bound, the odd ones included, in both dimensions.
TEST(PhaseCorrelationTranslationDetectorSurface,
     EqualsTheReferenceForEveryTransformSizeUpToThirtyTwo) {
  for (int height = 1; height <= 32; ++height) {
    for (int width = 1; width <= 32; ++width) {
      ExpectReferenceSurface(3, NoiseCapture({width, height}, 6), NoiseCapture({width, height}, 7));
    }
  }
}

TEST(PhaseCorrelationTranslationDetectorSurface,
     OfCapturesOfDifferentSizeIsMadeWhenTheTransformSizesAgree) {
  // 31 and 32 rows both make a transform of 32 rows.
  const cv::Mat lower = NoiseCapture({40, 31}, 1);
  const cv::Mat higher = NoiseCapture({40, 32}, 2);
  ExpectReferenceSurface(3, lower, higher);
  ExpectReferenceSurface(3, higher, lower);
  ExpectReferenceSurface(2, NoiseCapture({48, 127}, 3), NoiseCapture({48, 128}, 4));
}

TEST(PhaseCorrelationTranslationDetectorSurface, PassesOnThatTransformSizesDiffer) {
  cv::Size dftSize(7, 9);
  EXPECT_THROW(OpenDetector(Both).CalculateCorrelationMatrix(NoiseCapture({40, 30}, 1),
                                                             NoiseCapture({40, 20}, 2), dftSize),
               cv::Exception);
  EXPECT_EQ(dftSize, cv::Size(7, 9));
}

TEST(PhaseCorrelationTranslationDetectorSurface, PassesOnThatACaptureHasOneChannel) {
  const cv::Mat grey(20, 20, CV_8UC1, cv::Scalar(0));
  const cv::Mat colour = NoiseCapture({20, 20}, 1);
  cv::Size dftSize(7, 9);
  EXPECT_THROW(OpenDetector(Both).CalculateCorrelationMatrix(grey, colour, dftSize), cv::Exception);
  EXPECT_THROW(OpenDetector(Both).CalculateCorrelationMatrix(colour, grey, dftSize), cv::Exception);
  EXPECT_EQ(dftSize, cv::Size(7, 9));
}

TEST(PhaseCorrelationTranslationDetectorSurface, PassesOnThatACaptureIsEmpty) {
  const cv::Mat colour = NoiseCapture({20, 20}, 1);
  cv::Size dftSize(7, 9);
  EXPECT_THROW(OpenDetector(Both).CalculateCorrelationMatrix({}, colour, dftSize), cv::Exception);
  EXPECT_THROW(OpenDetector(Both).CalculateCorrelationMatrix(colour, {}, dftSize), cv::Exception);
  EXPECT_EQ(dftSize, cv::Size(7, 9));
}

TEST(PhaseCorrelationTranslationDetectorSurface, IgnoresAlpha) {
  const cv::Mat opaque = NoiseCapture({30, 20}, 1);
  cv::Mat clear = opaque.clone();
  cv::insertChannel(cv::Mat(clear.size(), CV_8UC1, cv::Scalar(0)), clear, 3);
  const cv::Mat other = NoiseCapture({30, 20}, 2);
  cv::Size dftSize;
  const OpenDetector detector(Both);
  EXPECT_TRUE(SameBits(detector.CalculateCorrelationMatrix(opaque, other, dftSize),
                       detector.CalculateCorrelationMatrix(clear, other, dftSize)));
}

TEST(PhaseCorrelationTranslationDetectorSurface, LeavesTheCapturesAsTheyWere) {
  const cv::Mat first = NoiseCapture({30, 20}, 1);
  const cv::Mat second = NoiseCapture({30, 20}, 2);
  cv::Size dftSize;
  OpenDetector(Both).CalculateCorrelationMatrix(first, second, dftSize);
  EXPECT_TRUE(SameBits(first, NoiseCapture({30, 20}, 1)));
  EXPECT_TRUE(SameBits(second, NoiseCapture({30, 20}, 2)));
}

TEST(PhaseCorrelationTranslationDetectorSurface, KeepsZeroComponentsZeroInsteadOfDividingByZero) {
  // Equal captures: every imaginary component of the product is 0. Black ones: all are.
  const cv::Mat page = TextPage({60, 40});
  const cv::Mat black = PlainCapture({60, 40}, 0);
  cv::Size dftSize;
  const cv::Mat surface = OpenDetector(Both).CalculateCorrelationMatrix(page, page, dftSize);
  EXPECT_TRUE(cv::checkRange(surface));
  EXPECT_GT(surface.at<float>(0, 0), 0.0F);
  const cv::Mat nothing = OpenDetector(Both).CalculateCorrelationMatrix(black, black, dftSize);
  EXPECT_EQ(cv::countNonZero(nothing), 0);
}

struct DirectedMotion {
  std::string name;
  ScrollOrientation orientation;
  cv::Point windowMotion;  ///< how far the window moves over the page
  cv::Point peak;          ///< in a transform of 200 x 200, or 100 in a direction not looked in
};

void PrintTo(const DirectedMotion& motion, std::ostream* stream) { *stream << motion.name; }

class PhaseCorrelationTranslationDetectorSurfacePeak
    : public testing::TestWithParam<DirectedMotion> {};

TEST_P(PhaseCorrelationTranslationDetectorSurfacePeak, LiesAtTheMotion) {
  const cv::Mat page = TextPage({300, 300});
  const cv::Rect window(100, 100, 100, 100);
  cv::Size dftSize;
  const cv::Mat surface = OpenDetector(GetParam().orientation)
                              .CalculateCorrelationMatrix(
                                  page(window), page(window + GetParam().windowMotion), dftSize);
  cv::Point peak;
  cv::minMaxLoc(surface, nullptr, nullptr, nullptr, &peak);
  EXPECT_EQ(peak, GetParam().peak);
}

INSTANTIATE_TEST_SUITE_P(
    Motions, PhaseCorrelationTranslationDetectorSurfacePeak,
    testing::Values(DirectedMotion{"NoMotion", Both, {0, 0}, {0, 0}},
                    DirectedMotion{"ContentUp", Vertical, {0, 40}, {0, 40}},
                    DirectedMotion{"ContentDown", Vertical, {0, -40}, {0, 160}},
                    DirectedMotion{"ContentLeft", Horizontal, {40, 0}, {40, 0}},
                    DirectedMotion{"ContentRight", Horizontal, {-40, 0}, {160, 0}},
                    DirectedMotion{"ContentUpAndRight", Both, {-20, 30}, {180, 30}}),
    [](const auto& instance) { return instance.param.name; });

struct SizeRule {
  std::string name;
  int orientation;
  cv::Size dftSize;  ///< for captures of 110 x 70
};

void PrintTo(const SizeRule& rule, std::ostream* stream) { *stream << rule.name; }

class PhaseCorrelationTranslationDetectorTransformSize : public testing::TestWithParam<SizeRule> {
 protected:
  const OpenDetector detector{static_cast<ScrollOrientation>(GetParam().orientation)};
};

TEST_P(PhaseCorrelationTranslationDetectorTransformSize, DoublesTheDirectionsOfTheOrientation) {
  cv::Size dftSize;
  cv::Mat spectrum;
  EXPECT_TRUE(detector.PerformDFT(GreyOf(NoiseCapture({110, 70}, 1)), spectrum, dftSize));
  EXPECT_EQ(dftSize, GetParam().dftSize);
  EXPECT_EQ(spectrum.size(), GetParam().dftSize);

  cv::Size surfaceSize;
  const cv::Mat surface = detector.CalculateCorrelationMatrix(
      NoiseCapture({110, 70}, 1), NoiseCapture({110, 70}, 2), surfaceSize);
  EXPECT_EQ(surfaceSize, GetParam().dftSize);
  EXPECT_EQ(surface.size(), GetParam().dftSize);
}

// The lengths that the transform likes: 70 becomes 72, 110 becomes 120, 140 becomes 144, 220
// becomes 225.
INSTANTIATE_TEST_SUITE_P(
    Orientations, PhaseCorrelationTranslationDetectorTransformSize,
    testing::Values(SizeRule{"Vertical", 0, {120, 144}}, SizeRule{"Horizontal", 1, {225, 72}},
                    SizeRule{"Both", 2, {225, 144}}, SizeRule{"Three", 3, {120, 72}},
                    SizeRule{"Seven", 7, {120, 72}}, SizeRule{"MinusOne", -1, {120, 72}}),
    [](const auto& instance) { return instance.param.name; });

TEST(PhaseCorrelationTranslationDetectorSpectrum, GivesTheFullComplexSpectrumOfTheReference) {
  for (const int orientation : {0, 1, 2, 3}) {
    for (const cv::Size size : {cv::Size(33, 20), cv::Size(64, 64), cv::Size(7, 1)}) {
      const cv::Mat grey = GreyOf(NoiseCapture(size, 1));
      const auto value = static_cast<ScrollOrientation>(orientation);
      cv::Mat spectrum;
      cv::Size dftSize;
      EXPECT_TRUE(OpenDetector(value).PerformDFT(grey, spectrum, dftSize));
      EXPECT_EQ(spectrum.type(), CV_32FC2);
      cv::Size expectedSize;
      EXPECT_TRUE(SameBits(spectrum, ReferenceDetector(value).PerformDFT(grey, expectedSize)));
      EXPECT_EQ(dftSize, expectedSize);
    }
  }
}

TEST(PhaseCorrelationTranslationDetectorSpectrum, CentresTheImageWithTheOddPixelOnTheFarSide) {
  // 11 x 7 pixels make a transform of 12 x 8: nothing before the image, one pixel after it.
  const cv::Mat grey = GreyOf(NoiseCapture({11, 7}, 1));
  cv::Mat spectrum;
  cv::Size dftSize;
  ASSERT_TRUE(OpenDetector(NoOrientation).PerformDFT(grey, spectrum, dftSize));
  ASSERT_EQ(dftSize, cv::Size(12, 8));
  cv::Mat enlarged;
  cv::dft(spectrum, enlarged, cv::DFT_INVERSE | cv::DFT_REAL_OUTPUT | cv::DFT_SCALE);
  cv::Mat expected(dftSize, CV_32FC1, cv::Scalar(0));
  grey.convertTo(expected(cv::Rect(0, 0, 11, 7)), CV_32F);
  EXPECT_LT(cv::norm(enlarged, expected, cv::NORM_INF), 1e-3);
}

TEST(PhaseCorrelationTranslationDetectorSpectrum, SaysNothingWhenItSucceeds) {
  const Testing::StreamCapture errors(std::cerr);
  cv::Mat spectrum;
  cv::Size dftSize;
  EXPECT_TRUE(OpenDetector(Both).PerformDFT(GreyOf(NoiseCapture({8, 8}, 1)), spectrum, dftSize));
  EXPECT_EQ(errors.Text(), "");
}

TEST(PhaseCorrelationTranslationDetectorInverse, GivesTheUnscaledRealInverseOfTheReference) {
  cv::Size dftSize;
  const cv::Mat spectrum =
      ReferenceDetector(Both).PerformDFT(GreyOf(NoiseCapture({33, 20}, 1)), dftSize);
  const cv::Mat before = spectrum.clone();
  cv::Mat surface;
  EXPECT_TRUE(OpenDetector(Both).PerformIDFT(spectrum, surface));
  EXPECT_TRUE(SameBits(surface, ReferenceDetector::PerformIDFT(spectrum)));
  EXPECT_TRUE(SameBits(spectrum, before));
}

struct PeakCase {
  std::string name;
  int orientation;
  cv::Size dftSize;
  int row;
  int column;
  Translation translation;
};

void PrintTo(const PeakCase& peak, std::ostream* stream) { *stream << peak.name; }

class PhaseCorrelationTranslationDetectorPeakConversion : public testing::TestWithParam<PeakCase> {
};

TEST_P(PhaseCorrelationTranslationDetectorPeakConversion, GivesTheMotionOfTheContent) {
  const PeakCase& c = GetParam();
  const int peak[2] = {c.row, c.column};
  EXPECT_EQ(OpenDetector(static_cast<ScrollOrientation>(c.orientation))
                .ConvertFrequencyCoordinatesToTranslation(peak, c.dftSize),
            c.translation);
}

INSTANTIATE_TEST_SUITE_P(
    Peaks, PhaseCorrelationTranslationDetectorPeakConversion,
    testing::Values(PeakCase{"Origin", 2, {20, 10}, 0, 0, {0, 0}},
                    PeakCase{"FirstHalves", 2, {20, 10}, 4, 9, {-4, -9}},
                    PeakCase{"SecondHalves", 2, {20, 10}, 6, 11, {4, 9}},
                    PeakCase{"EvenMiddleCountsAsSecondHalf", 2, {20, 10}, 5, 10, {5, 10}},
                    PeakCase{"LastOfTheFirstHalfOfAnOddSize", 2, {25, 15}, 6, 11, {-6, -11}},
                    PeakCase{"FirstOfTheSecondHalfOfAnOddSize", 2, {25, 15}, 7, 12, {8, 13}},
                    PeakCase{"LastElement", 2, {20, 10}, 9, 19, {1, 1}},
                    PeakCase{"VerticalIgnoresColumns", 0, {20, 10}, 4, 9, {-4, 0}},
                    PeakCase{"HorizontalIgnoresRows", 1, {20, 10}, 4, 9, {0, -9}},
                    PeakCase{"ThreeIgnoresBoth", 3, {20, 10}, 4, 9, {0, 0}},
                    PeakCase{"MinusOneIgnoresBoth", -1, {20, 10}, 6, 11, {0, 0}}),
    [](const auto& instance) { return instance.param.name; });

}  // namespace
}  // namespace ScrollingCapture
