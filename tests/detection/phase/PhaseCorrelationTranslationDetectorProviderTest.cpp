#include <memory>
#include <mutex>
#include <set>
#include <stdexcept>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <testkit/pages/NumberedCaptures.h>
#include <testkit/pages/Page.h>
#include <testkit/pages/ScrolledPage.h>
#include <testkit/references/ReferenceDetector.h>

namespace ScrollingCapture {
namespace {

using testing::ElementsAre;
using Testing::FiveCaptures;
using Testing::NumberedCaptures;
using Testing::ReferenceDetector;

using Translations = std::vector<Translation>;

/// Hands out a new matrix at each call, and notes what was asked for.
class FreshMatrixProvider : public BasicImageProvider {
 public:
  explicit FreshMatrixProvider(const BasicImageProvider& captures) : BasicImageProvider(captures) {}

  std::shared_ptr<cv::Mat> GetImageAt(size_t index) override {
    auto fresh = std::make_shared<cv::Mat>(BasicImageProvider::GetImageAt(index)->clone());
    const std::lock_guard<std::mutex> lock(mutex);
    asked.push_back(index);
    return fresh;
  }

  std::vector<size_t> asked;

 private:
  std::mutex mutex;
};

TEST(PhaseCorrelationTranslationDetectorProvider, TakesAFreshMatrixAtEachCall) {
  for (const unsigned int threadCount : {1U, 3U}) {
    FreshMatrixProvider captures(FiveCaptures().Captures());
    PhaseCorrelationTranslationDetector detector(Both, false, threadCount);
    EXPECT_EQ(detector.DetectTranslation(captures, nullptr, 0, 90), FiveCaptures().translations);
  }
}

TEST(PhaseCorrelationTranslationDetectorProvider,
     AsksForTheEarlierAndThenTheLaterCaptureOfEachPair) {
  FreshMatrixProvider captures(FiveCaptures().Captures());
  PhaseCorrelationTranslationDetector detector(Both, false, 1);
  detector.DetectTranslation(captures, nullptr, 0, 90);
  EXPECT_THAT(captures.asked, ElementsAre(0, 1, 1, 2, 2, 3, 3, 4));
}

TEST(PhaseCorrelationTranslationDetectorProvider,
     HandsAFailureOfTheProviderToTheCallerOnceAllWorkersHaveEnded) {
  class LosingProvider : public BasicImageProvider {
   public:
    explicit LosingProvider(const BasicImageProvider& captures) : BasicImageProvider(captures) {}
    std::shared_ptr<cv::Mat> GetImageAt(size_t index) override {
      if (index == 2) {
        throw std::runtime_error("lost");
      }
      return BasicImageProvider::GetImageAt(index);
    }
  };
  for (const unsigned int threadCount : {1U, 3U}) {
    LosingProvider captures(FiveCaptures().Captures());
    PhaseCorrelationTranslationDetector detector(Both, false, threadCount);
    EXPECT_THROW(detector.DetectTranslation(captures, nullptr, 0, 90), std::runtime_error);
  }
}

TEST(PhaseCorrelationTranslationDetectorProvider, TakesRepeatedCaptures) {
  BasicImageProvider captures;
  const cv::Mat page = Testing::TextPage({100, 300});
  for (const int top : {0, 0, 40, 40, 40, 0}) {
    cv::Mat capture = page(cv::Rect(0, top, 100, 90)).clone();
    captures.Add(capture);
  }
  for (const unsigned int threadCount : {1U, 3U}) {
    PhaseCorrelationTranslationDetector detector(Both, false, threadCount);
    EXPECT_THAT(detector.DetectTranslation(captures, nullptr, 0, 90),
                ElementsAre(Translation(0, 0), Translation(-40, 0), Translation(0, 0),
                            Translation(0, 0), Translation(40, 0)));
  }
}

/// Gives another picture whenever a capture is asked for again: the pairs of a sequence then have
/// nothing in common.
class ChangingProvider : public BasicImageProvider {
 public:
  explicit ChangingProvider(size_t count) : BasicImageProvider(NumberedCaptures(count)) {}

  /// The capture at an index, when it is asked for as the later or as the earlier one of a pair.
  static cv::Mat Capture(size_t index, bool later) {
    const cv::Mat page = Testing::TextPage({200, 300}, 2 * index + (later ? 0 : 1));
    return page(cv::Rect(0, later ? 20 : 0, 90, 80)).clone();
  }

  std::shared_ptr<cv::Mat> GetImageAt(size_t index) override {
    const std::lock_guard<std::mutex> lock(mutex);
    const bool later = index > 0 && laterSeen.insert(index).second;
    return std::make_shared<cv::Mat>(Capture(index, later));
  }

 private:
  std::mutex mutex;
  std::set<size_t> laterSeen;
};

TEST(PhaseCorrelationTranslationDetectorProvider, UsesThePixelsOfTheMomentAndNeverAnEarlierOnes) {
  ChangingProvider captures(6);
  PhaseCorrelationTranslationDetector detector(Both, false, 1);
  const Translations found = detector.DetectTranslation(captures, nullptr, 0, 90);
  Translations expected;
  for (size_t pair = 0; pair < 5; ++pair) {
    expected.push_back(ReferenceDetector(Both).DetectTranslation(
        ChangingProvider::Capture(pair, false), ChangingProvider::Capture(pair + 1, true)));
  }
  EXPECT_EQ(found, expected);
}

/// Hands out one matrix that it fills anew at each call, as a provider with a single buffer might.
/// The pixels of a capture then change while its address stays.
class SharedBufferProvider : public BasicImageProvider {
 public:
  explicit SharedBufferProvider(const BasicImageProvider& captures)
      : BasicImageProvider(captures),
        buffers{std::make_shared<cv::Mat>(), std::make_shared<cv::Mat>()} {}

  std::shared_ptr<cv::Mat> GetImageAt(size_t index) override {
    const std::shared_ptr<cv::Mat>& buffer = buffers[calls++ % 2];
    BasicImageProvider::GetImageAt(index)->copyTo(*buffer);
    return buffer;
  }

 private:
  std::shared_ptr<cv::Mat> buffers[2];
  size_t calls = 0;
};

TEST(PhaseCorrelationTranslationDetectorProvider, TakesCapturesWhoseMemoryIsUsedAgain) {
  SharedBufferProvider captures(FiveCaptures().Captures());
  PhaseCorrelationTranslationDetector detector(Both, false, 1);
  EXPECT_EQ(detector.DetectTranslation(captures, nullptr, 0, 90), FiveCaptures().translations);
}

/// Black in each depth, so that the pixels of one begin as those of the next do.
TEST(PhaseCorrelationTranslationDetectorProvider, TakesCapturesOfOneSizeThatDifferInDepth) {
  BasicImageProvider captures;
  for (const int type : {CV_8UC4, CV_32FC4, CV_8UC3, CV_16UC4, CV_32FC3, CV_8UC4}) {
    cv::Mat capture(64, 512, type, cv::Scalar::all(0));
    captures.Add(capture);
  }
  Translations expected;
  for (size_t pair = 0; pair + 1 < captures.Count(); ++pair) {
    expected.push_back(ReferenceDetector(Both).DetectTranslation(*captures.GetImageAt(pair),
                                                                 *captures.GetImageAt(pair + 1)));
  }
  for (const unsigned int threadCount : {1U, 3U}) {
    PhaseCorrelationTranslationDetector detector(Both, false, threadCount);
    EXPECT_EQ(detector.DetectTranslation(captures, nullptr, 0, 90), expected);
  }
}

TEST(PhaseCorrelationTranslationDetectorProvider,
     TakesPairsOfDifferentSizeWhoseTransformSizesAgree) {
  BasicImageProvider captures;
  for (const int rows : {127, 128, 127, 127, 128}) {
    cv::Mat capture = Testing::TextPage({96, rows}, static_cast<unsigned int>(rows));
    captures.Add(capture);
  }
  Translations expected;
  for (size_t pair = 0; pair < 4; ++pair) {
    expected.push_back(ReferenceDetector(Both).DetectTranslation(*captures.GetImageAt(pair),
                                                                 *captures.GetImageAt(pair + 1)));
  }
  PhaseCorrelationTranslationDetector detector(Both, false, 1);
  EXPECT_EQ(detector.DetectTranslation(captures, nullptr, 0, 90), expected);
}

}  // namespace
}  // namespace ScrollingCapture
