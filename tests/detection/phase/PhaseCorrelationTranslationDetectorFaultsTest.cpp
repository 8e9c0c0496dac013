// Memory that runs out while a pair of captures is compared.

#include <functional>
#include <iostream>
#include <ostream>

#include <gtest/gtest.h>
#include <testkit/MatrixTesting.h>
#include <testkit/OpenDetector.h>
#include <testkit/faults/EveryFailure.h>
#include <testkit/faults/ThrowingListener.h>
#include <testkit/pages/Page.h>

#include <VelScrollingCapture/storage/BasicImageProvider.h>

namespace ScrollingCapture {
namespace {

using Testing::FailingAllocator;
using Testing::ForEachFailingAllocation;
using Testing::MemoryFault;
using Testing::OpenDetector;
using Testing::SameBits;
using Testing::TextPage;

const Translation Kept(1, 2);
const Translation ScrolledDown(-30, 0);

/// What a detection gives, with everything that it writes to.
struct Detected {
  Translation best;
  Translation alternative = Kept;
  cv::Mat surface;
};

struct Operation {
  const char* name;
  std::function<void(OpenDetector&, const cv::Mat& first, const cv::Mat& second, Detected&)> detect;
};
void PrintTo(const Operation& operation, std::ostream* stream) { *stream << operation.name; }

class PhaseCorrelationTranslationDetectorAllocations : public testing::TestWithParam<Operation> {};

TEST_P(PhaseCorrelationTranslationDetectorAllocations, GiveTheWholeAnswerOrThrow) {
  const cv::Mat page = TextPage({100, 150});
  const cv::Mat first = page.rowRange(0, 120);
  const cv::Mat second = page.rowRange(30, 150);
  for (const ScrollOrientation orientation : {Both, Vertical, Horizontal}) {
    OpenDetector detector(orientation);
    Detected whole;
    GetParam().detect(detector, first, second, whole);
    ForEachFailingAllocation(FailingAllocator::First, [&](MemoryFault& fault) {
      Detected detected;
      const bool failed =
          fault.HitsDuring([&] { GetParam().detect(detector, first, second, detected); });
      EXPECT_EQ(fault.HasThrown(), failed);
      if (failed) {
        EXPECT_EQ(detected.alternative, Kept);
        EXPECT_TRUE(detected.surface.empty());
        GetParam().detect(detector, first, second, detected);
      }
      EXPECT_EQ(detected.best, whole.best);
      EXPECT_EQ(detected.alternative, whole.alternative);
      EXPECT_TRUE(SameBits(detected.surface, whole.surface));
    });
  }
}

INSTANTIATE_TEST_SUITE_P(
    Operations, PhaseCorrelationTranslationDetectorAllocations,
    testing::Values(Operation{"BestTranslation",
                              [](OpenDetector& detector, const cv::Mat& first,
                                 const cv::Mat& second, Detected& detected) {
                                ITranslationDetector& interface = detector;
                                detected.best = interface.DetectTranslation(first, second);
                              }},
                    Operation{"Alternative",
                              [](OpenDetector& detector, const cv::Mat& first,
                                 const cv::Mat& second, Detected& detected) {
                                detected.best = detector.DetectTranslationWithAlternative(
                                    first, second, detected.alternative);
                              }},
                    Operation{"Surface",
                              [](OpenDetector& detector, const cv::Mat& first,
                                 const cv::Mat& second, Detected& detected) {
                                cv::Size dftSize;
                                detected.surface =
                                    detector.CalculateCorrelationMatrix(first, second, dftSize);
                              }},
                    Operation{"Spectrum",
                              [](OpenDetector& detector, const cv::Mat& first,
                                 const cv::Mat& /*second*/, Detected& detected) {
                                cv::Mat grey(first.size(), CV_8UC1, cv::Scalar(3));
                                cv::Size dftSize;
                                EXPECT_TRUE(detector.PerformDFT(grey, detected.surface, dftSize));
                              }},
                    Operation{"InverseTransform",
                              [](OpenDetector& detector, const cv::Mat& first,
                                 const cv::Mat& /*second*/, Detected& detected) {
                                const cv::Mat spectrum(first.size(), CV_32FC2, cv::Scalar(1, 0));
                                EXPECT_TRUE(detector.PerformIDFT(spectrum, detected.surface));
                              }}),
    [](const auto& test) { return test.param.name; });

TEST(PhaseCorrelationTranslationDetectorListener, EndsASequenceByThrowingAtItsEndAndLosesNothing) {
  const cv::Mat page = TextPage({100, 180});
  BasicImageProvider captures;
  for (const int top : {0, 30, 60}) {
    cv::Mat capture = page.rowRange(top, top + 120).clone();
    captures.Add(capture);
  }
  PhaseCorrelationTranslationDetector detector(Vertical, true, 2);
  Testing::ThrowingListener listener(0);
  EXPECT_THROW(detector.DetectTranslation(captures, &listener, 0, 100), Testing::ListenerFailure);
  EXPECT_EQ(detector.DetectTranslation(captures, nullptr, 0, 100),
            std::vector<Translation>(2, ScrolledDown));
}

}  // namespace
}  // namespace ScrollingCapture
