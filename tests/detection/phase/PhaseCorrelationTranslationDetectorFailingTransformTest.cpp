#include <algorithm>
#include <atomic>
#include <iostream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <opencv2/core.hpp>
#include <testkit/MatrixTesting.h>
#include <testkit/MessageCapture.h>
#include <testkit/OpenDetector.h>
#include <testkit/RecordingListener.h>
#include <testkit/StreamCapture.h>
#include <testkit/pages/NumberedCaptures.h>
#include <testkit/pages/Page.h>

#include "InterposedFunctions.h"

namespace ScrollingCapture {
namespace {

using testing::ElementsAre;
using Testing::NoiseCapture;
using Testing::OpenDetector;
using Testing::ScopedInterposition;

const std::string ForwardLines =
    "Error: PerformDFT failed.\n"
    "Error: Failed to perform DFT.\n";
const std::string InverseLines =
    "Error: PerformIDFT failed.\n"
    "Error: Failed to perform IDFT.\n";
const std::string NoSurfaceLine = "Failed to create correlation matrix.\n";

bool IsInverse(int flags) { return (flags & cv::DFT_INVERSE) != 0; }
bool IsForward(int flags) { return !IsInverse(flags); }

struct Failure {
  std::string name;
  std::function<bool(int flags)> transformFails;
  std::string lines;
};

void PrintTo(const Failure& failure, std::ostream* stream) { *stream << failure.name; }

class PhaseCorrelationTranslationDetectorFailingTransform : public testing::TestWithParam<Failure> {
 protected:
  const cv::Mat first = NoiseCapture({40, 30}, 1);
  const cv::Mat second = NoiseCapture({40, 30}, 2);
  OpenDetector detector{Both};
  const ScopedInterposition interposition{{GetParam().transformFails, nullptr, nullptr}};
  const Testing::StreamCapture errors{std::cerr};
};

TEST_P(PhaseCorrelationTranslationDetectorFailingTransform,
       LeavesTheSurfaceEmptyAndTheTransformSizeUntouched) {
  cv::Size dftSize(7, 9);
  EXPECT_TRUE(detector.CalculateCorrelationMatrix(first, second, dftSize).empty());
  EXPECT_EQ(errors.Text(), GetParam().lines);
  EXPECT_EQ(dftSize, cv::Size(7, 9));
}

TEST_P(PhaseCorrelationTranslationDetectorFailingTransform, MakesThePairsTranslationZero) {
  EXPECT_EQ(detector.DetectTranslation(first, second), Translation(0, 0));
  EXPECT_EQ(errors.Text(), GetParam().lines + NoSurfaceLine);
}

TEST_P(PhaseCorrelationTranslationDetectorFailingTransform, LeavesTheAlternativeUntouched) {
  Translation alternative(7, 9);
  EXPECT_EQ(detector.DetectTranslationWithAlternative(first, second, alternative),
            Translation(0, 0));
  EXPECT_EQ(alternative, Translation(7, 9));
  EXPECT_EQ(errors.Text(), GetParam().lines + NoSurfaceLine);
}

TEST_P(PhaseCorrelationTranslationDetectorFailingTransform, IsToldToAHostThatTakesTheMessages) {
  const Testing::MessageCapture messages;
  detector.DetectTranslation(first, second);
  std::string lines;
  for (const auto& [kind, text] : messages.Messages()) {
    EXPECT_EQ(kind, MessageKind::Error);
    lines += text + "\n";
  }
  EXPECT_EQ(lines, GetParam().lines + NoSurfaceLine);
  EXPECT_EQ(errors.Text(), "");
}

TEST_P(PhaseCorrelationTranslationDetectorFailingTransform,
       DoesNotHideACaptureThatCannotBeTurnedToGrey) {
  cv::Size dftSize;
  EXPECT_THROW(detector.CalculateCorrelationMatrix(first, {}, dftSize), cv::Exception);
  EXPECT_EQ(errors.Text(), "");
}

TEST_P(PhaseCorrelationTranslationDetectorFailingTransform,
       GivesZerosForEachPairOfASequenceThatGoesOn) {
  BasicImageProvider captures;
  for (unsigned int seed = 0; seed < 3; ++seed) {
    cv::Mat capture = NoiseCapture({40, 30}, seed);
    captures.Add(capture);
  }
  Testing::RecordingListener listener;
  for (const bool consistent : {false, true}) {
    PhaseCorrelationTranslationDetector plain(Both, consistent, 1);
    EXPECT_THAT(plain.DetectTranslation(captures, &listener, 0, 90),
                ElementsAre(Translation(), Translation()));
  }
  EXPECT_THAT(listener.calls, ElementsAre("progress 45", "progress 90", "progress 90",
                                          "progress 45", "progress 90", "progress 90"));
  const std::string pair = GetParam().lines + NoSurfaceLine;
  EXPECT_EQ(errors.Text(), pair + pair + pair + pair);
}

INSTANTIATE_TEST_SUITE_P(Directions, PhaseCorrelationTranslationDetectorFailingTransform,
                         testing::Values(Failure{"Forward", IsForward, ForwardLines},
                                         Failure{"Inverse", IsInverse, InverseLines},
                                         Failure{"All", [](int) { return true; }, ForwardLines}),
                         [](const auto& instance) { return instance.param.name; });

/// Lets the n-th transform of a pair fail, for every n until there are no more transforms.
TEST(PhaseCorrelationTranslationDetectorFailingTransform, IsToldOnceWhicheverTransformFails) {
  const cv::Mat first = NoiseCapture({40, 30}, 1);
  const cv::Mat second = NoiseCapture({40, 30}, 2);
  bool failed = true;
  int failingCall = 0;
  while (failed) {
    int call = 0;
    bool inverse = false;
    failed = false;
    const auto fails = [&](int flags) {
      if (call++ != failingCall) {
        return false;
      }
      inverse = IsInverse(flags);
      failed = true;
      return true;
    };
    const ScopedInterposition interposition{{fails, nullptr, nullptr}};
    const Testing::StreamCapture errors(std::cerr);
    cv::Size dftSize;
    const cv::Mat surface = OpenDetector(Both).CalculateCorrelationMatrix(first, second, dftSize);
    EXPECT_EQ(surface.empty(), failed);
    const std::string lines = inverse ? InverseLines : ForwardLines;
    EXPECT_EQ(errors.Text(), failed ? lines : "") << "call " << failingCall;
    ++failingCall;
  }
  EXPECT_GE(failingCall, 4) << "two forward transforms, an inverse one, and a run without failure";
}

/// What a window shows over a page when these rows of it are at its top.
BasicImageProvider CapturesFrom(const std::vector<int>& tops) {
  const cv::Mat page = Testing::TextPage({200, 300});
  BasicImageProvider captures;
  for (const int top : tops) {
    cv::Mat capture = page(cv::Rect(0, top, 120, 100)).clone();
    captures.Add(capture);
  }
  return captures;
}

/// A spectrum that could not be made is never taken for that of the next pair.
TEST(PhaseCorrelationTranslationDetectorFailingTransform, OfOnePairDoesNotHarmTheOthers) {
  BasicImageProvider captures = CapturesFrom({0, 20, 50, 90});
  const Testing::StreamCapture errors(std::cerr);
  std::atomic<int> calls = 0;
  const ScopedInterposition interposition{
      {[&](int flags) { return IsForward(flags) && calls++ == 0; }, nullptr, nullptr}};
  PhaseCorrelationTranslationDetector detector(Both, false, 1);
  EXPECT_THAT(detector.DetectTranslation(captures, nullptr, 0, 90),
              ElementsAre(Translation(), Translation(-30, 0), Translation(-40, 0)));
  EXPECT_EQ(errors.Text(), ForwardLines + NoSurfaceLine);
}

/// Whichever pair it hits: its neighbour waits for the spectrum and then makes its own.
TEST(PhaseCorrelationTranslationDetectorFailingTransform, OfOneOfManyThreadsDoesNotHarmTheOthers) {
  BasicImageProvider captures = CapturesFrom({0, 10, 20, 30, 40, 50, 60, 70});
  const Testing::StreamCapture errors(std::cerr);
  std::atomic<int> calls = 0;
  const ScopedInterposition interposition{
      {[&](int flags) { return IsForward(flags) && calls++ == 0; }, nullptr, nullptr}};
  PhaseCorrelationTranslationDetector detector(Both, false, 4);
  std::vector<Translation> found = detector.DetectTranslation(captures, nullptr, 0, 90);
  EXPECT_EQ(std::count(found.begin(), found.end(), Translation(0, 0)), 1);
  EXPECT_EQ(std::count(found.begin(), found.end(), Translation(-10, 0)), 6);
  EXPECT_EQ(errors.Text(), ForwardLines + NoSurfaceLine);
}

/// Counts the forward transforms of a sequence of captures that scroll.
int ForwardTransformsOf(ITranslationDetector& detector, int captureCount) {
  std::vector<int> tops(static_cast<size_t>(captureCount));
  std::generate(tops.begin(), tops.end(), [top = -10]() mutable { return top += 10; });
  BasicImageProvider captures = CapturesFrom(tops);
  int calls = 0;
  const ScopedInterposition interposition{{[&](int flags) {
                                             calls += IsForward(flags) ? 1 : 0;
                                             return false;
                                           },
                                           nullptr, nullptr}};
  detector.DetectTranslation(captures, nullptr, 0, 90);
  return calls;
}

TEST(PhaseCorrelationTranslationDetectorSequence, TransformsEachCaptureOnce) {
  PhaseCorrelationTranslationDetector detector(Both, false, 1);
  const int callsForTwoCaptures = ForwardTransformsOf(detector, 2);
  EXPECT_GT(callsForTwoCaptures, 0);
  EXPECT_EQ(ForwardTransformsOf(detector, 8), 4 * callsForTwoCaptures);
}

TEST(PhaseCorrelationTranslationDetectorSequence,
     TransformsEachCaptureOnceForADerivedDetectorThatLeavesPairsToItsBase) {
  OpenDetector detector(Both);
  const int callsForTwoCaptures = ForwardTransformsOf(detector, 2);
  EXPECT_EQ(ForwardTransformsOf(detector, 8), 4 * callsForTwoCaptures);
}

TEST(PhaseCorrelationTranslationDetectorForwardTransform,
     TellsThatItFailedAfterWritingTheTransformSize) {
  const ScopedInterposition interposition{{IsForward, nullptr, nullptr}};
  const Testing::StreamCapture errors(std::cerr);
  cv::Mat spectrum(1, 1, CV_8UC1, cv::Scalar(42));
  cv::Size dftSize(7, 9);
  EXPECT_FALSE(
      OpenDetector(Both).PerformDFT(cv::Mat(30, 40, CV_8UC1, cv::Scalar(0)), spectrum, dftSize));
  EXPECT_EQ(errors.Text(), "Error: PerformDFT failed.\n");
  EXPECT_EQ(dftSize, cv::Size(80, 60));
  ASSERT_EQ(spectrum.size(), cv::Size(1, 1));
  EXPECT_EQ(spectrum.at<uchar>(0, 0), 42);
}

TEST(PhaseCorrelationTranslationDetectorInverseTransform,
     TellsThatItFailedAndLeavesTheSurfaceUntouched) {
  const ScopedInterposition interposition{{IsInverse, nullptr, nullptr}};
  const Testing::StreamCapture errors(std::cerr);
  cv::Mat surface(1, 1, CV_8UC1, cv::Scalar(42));
  EXPECT_FALSE(
      OpenDetector(Both).PerformIDFT(cv::Mat(30, 40, CV_32FC2, cv::Scalar::all(1)), surface));
  EXPECT_EQ(errors.Text(), "Error: PerformIDFT failed.\n");
  ASSERT_EQ(surface.size(), cv::Size(1, 1));
  EXPECT_EQ(surface.at<uchar>(0, 0), 42);
}

}  // namespace
}  // namespace ScrollingCapture
