#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <testkit/pages/NumberedCaptures.h>
#include <testkit/pages/ScrolledPage.h>
#include <testkit/references/ReferenceDetector.h>

namespace ScrollingCapture {
namespace {

using testing::ElementsAre;
using Testing::NumberedCaptures;
using Testing::NumberOf;
using testing::TestWithParam;

using Translations = std::vector<Translation>;

/// Gives a scripted translation and alternative for each pair of numbered captures.
class ScriptedPairsDetector : public PhaseCorrelationTranslationDetector {
 public:
  ScriptedPairsDetector(bool expectConsistentTranslations, Translations best,
                        Translations alternatives)
      : PhaseCorrelationTranslationDetector(Both, expectConsistentTranslations, 2),
        best(std::move(best)),
        alternatives(std::move(alternatives)) {}

  using PhaseCorrelationTranslationDetector::DetectTranslation;

  Translation DetectTranslation(const cv::Mat& first, const cv::Mat& /*second*/) override {
    return best.at(NumberOf(first));
  }

  Translation DetectTranslationWithAlternative(const cv::Mat& first, const cv::Mat& /*second*/,
                                               Translation& alternative) override {
    alternative = alternatives.at(NumberOf(first));
    return best.at(NumberOf(first));
  }

 private:
  Translations best;
  Translations alternatives;
};

TEST(PhaseCorrelationTranslationDetectorOverride, UsesThePairwiseOperationOfADerivedDetector) {
  BasicImageProvider captures = NumberedCaptures(3);
  ScriptedPairsDetector detector(false, {{1, 2}, {3, 4}}, {});
  EXPECT_THAT(detector.DetectTranslation(captures, nullptr, 0, 90),
              ElementsAre(Translation(1, 2), Translation(3, 4)));
}

TEST(PhaseCorrelationTranslationDetectorOverride,
     UsesTheAlternativeOperationOfADerivedDetectorWhenConsistencyIsExpected) {
  class OnlyAlternatives : public PhaseCorrelationTranslationDetector {
   public:
    OnlyAlternatives() : PhaseCorrelationTranslationDetector(Both, true, 1) {}
    Translation DetectTranslationWithAlternative(const cv::Mat& /*first*/,
                                                 const cv::Mat& /*second*/,
                                                 Translation& /*alternative*/) override {
      return {5, 6};
    }
  } detector;
  BasicImageProvider captures = NumberedCaptures(2);
  ITranslationDetector& interface = detector;
  EXPECT_THAT(interface.DetectTranslation(captures, nullptr, 0, 90),
              ElementsAre(Translation(5, 6)));
}

/// What a detector gives that hands some of its pairs' captures on in part.
class CroppingDetector : public PhaseCorrelationTranslationDetector {
 public:
  explicit CroppingDetector(unsigned int threadCount)
      : PhaseCorrelationTranslationDetector(Both, false, threadCount) {}

  using PhaseCorrelationTranslationDetector::DetectTranslation;

  /// Pairs that begin with a capture of an even seed lose their lower half.
  static cv::Rect Part(const cv::Mat& first) {
    const bool isWhole = first.at<cv::Vec4b>(0, 0)[3] == 255;
    return {0, 0, first.cols, isWhole ? first.rows : first.rows / 2};
  }

  Translation DetectTranslation(const cv::Mat& first, const cv::Mat& second) override {
    const cv::Rect part = Part(first);
    PhaseCorrelationTranslationDetector::DetectTranslation(second(part), first(part));
    return PhaseCorrelationTranslationDetector::DetectTranslation(first(part), second(part));
  }
};

/// Captures of a page, every other one marked.
BasicImageProvider MarkedCaptures() {
  BasicImageProvider captures = Testing::FiveCaptures().Captures();
  for (size_t i = 0; i < captures.Count(); i += 2) {
    captures.GetImageAt(i)->at<cv::Vec4b>(0, 0)[3] = 254;
  }
  return captures;
}

TEST(PhaseCorrelationTranslationDetectorOverride,
     ComparesWhatAnOverrideHandsOnAndNotTheCapturesOfTheProvider) {
  BasicImageProvider captures = MarkedCaptures();
  Translations expected;
  for (size_t pair = 0; pair + 1 < captures.Count(); ++pair) {
    const cv::Mat& first = *captures.GetImageAt(pair);
    const cv::Rect part = CroppingDetector::Part(first);
    expected.push_back(Testing::ReferenceDetector(Both).DetectTranslation(
        first(part), (*captures.GetImageAt(pair + 1))(part)));
  }
  for (const unsigned int threadCount : {1U, 3U}) {
    CroppingDetector detector(threadCount);
    EXPECT_EQ(detector.DetectTranslation(captures, nullptr, 0, 90), expected) << threadCount;
  }
}

TEST(PhaseCorrelationTranslationDetectorOverride, KeepsAnotherDetectorApartThatAnOverrideAsks) {
  class AskingDetector : public PhaseCorrelationTranslationDetector {
   public:
    AskingDetector() : PhaseCorrelationTranslationDetector(Both, false, 2) {}
    using PhaseCorrelationTranslationDetector::DetectTranslation;
    Translation DetectTranslation(const cv::Mat& first, const cv::Mat& second) override {
      PhaseCorrelationTranslationDetector vertical(Vertical, false, 1);
      const Translation both =
          PhaseCorrelationTranslationDetector::DetectTranslation(first, second);
      const Translation rows = vertical.DetectTranslation(first, second);
      EXPECT_EQ(rows, Testing::ReferenceDetector(Vertical).DetectTranslation(first, second));
      return both;
    }
  } detector;
  BasicImageProvider captures = Testing::FiveCaptures().Captures();
  EXPECT_EQ(detector.DetectTranslation(captures, nullptr, 0, 90),
            Testing::FiveCaptures().translations);
}

struct Consistency {
  std::string name;
  Translations best;
  Translations alternatives;
  Translations result;
};

void PrintTo(const Consistency& consistency, std::ostream* stream) { *stream << consistency.name; }

class PhaseCorrelationTranslationDetectorConsistency : public TestWithParam<Consistency> {};

TEST_P(PhaseCorrelationTranslationDetectorConsistency,
       PrefersAnAlternativeThatRepeatsTheTranslationBefore) {
  BasicImageProvider captures = NumberedCaptures(GetParam().best.size() + 1);
  ScriptedPairsDetector detector(true, GetParam().best, GetParam().alternatives);
  EXPECT_EQ(detector.DetectTranslation(captures, nullptr, 0, 90), GetParam().result);
}

TEST_P(PhaseCorrelationTranslationDetectorConsistency, IsLeftOutWhenConsistencyIsNotExpected) {
  BasicImageProvider captures = NumberedCaptures(GetParam().best.size() + 1);
  ScriptedPairsDetector detector(false, GetParam().best, GetParam().alternatives);
  EXPECT_EQ(detector.DetectTranslation(captures, nullptr, 0, 90), GetParam().best);
}

INSTANTIATE_TEST_SUITE_P(Cases, PhaseCorrelationTranslationDetectorConsistency,
                         testing::Values(Consistency{"ReplacesAnOutlier",
                                                     {{-50, 0}, {-50, 0}, {-3, 0}},
                                                     {{-50, 0}, {-50, 0}, {-50, 0}},
                                                     {{-50, 0}, {-50, 0}, {-50, 0}}},
                                         Consistency{"KeepsAPairWithoutAnotherCandidate",
                                                     {{-50, 0}, {-50, 0}, {-3, 0}},
                                                     {{-50, 0}, {-50, 0}, {-3, 0}},
                                                     {{-50, 0}, {-50, 0}, {-3, 0}}},
                                         Consistency{"NeverReplacesTheFirstPair",
                                                     {{-3, 0}, {-50, 0}},
                                                     {{-50, 0}, {-50, 0}},
                                                     {{-3, 0}, {-50, 0}}},
                                         Consistency{"GoesOnAlongTheSequence",
                                                     {{-50, 0}, {-3, 0}, {-4, 0}, {-5, 0}},
                                                     {{-50, 0}, {-50, 0}, {-50, 0}, {-50, 0}},
                                                     {{-50, 0}, {-50, 0}, {-50, 0}, {-50, 0}}},
                                         Consistency{"ComparesWithTheReplacedTranslation",
                                                     {{-50, 0}, {-3, 0}, {-7, 0}},
                                                     {{-50, 0}, {-50, 0}, {-3, 0}},
                                                     {{-50, 0}, {-50, 0}, {-7, 0}}},
                                         Consistency{"ComparesColumnsAsWell",
                                                     {{-50, 1}, {-3, 0}},
                                                     {{-50, 1}, {-50, 0}},
                                                     {{-50, 1}, {-3, 0}}},
                                         Consistency{"IgnoresAnAlternativeThatRepeatsTheNextPair",
                                                     {{-3, 0}, {-4, 0}, {-50, 0}},
                                                     {{-3, 0}, {-50, 0}, {-50, 0}},
                                                     {{-3, 0}, {-4, 0}, {-50, 0}}}),
                         [](const auto& instance) { return instance.param.name; });

}  // namespace
}  // namespace ScrollingCapture
