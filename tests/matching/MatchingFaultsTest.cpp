// Memory that runs out while captures are matched.

#include <new>

#include <gtest/gtest.h>
#include <testkit/faults/EveryFailure.h>

#include <VelScrollingCapture/matching/CapturePlacer.h>
#include <VelScrollingCapture/matching/PairMatcher.h>

#include "Travel.h"

namespace ScrollingCapture {
namespace {

using namespace Testing;

struct Pair {
  const char* name;
  cv::Mat first;
  cv::Mat second;
};
void PrintTo(const Pair& pair, std::ostream* stream) { *stream << pair.name; }

class MatchingAllocations : public testing::TestWithParam<Pair> {};

TEST_P(MatchingAllocations, GiveTheWholeAnswerOrThrow) {
  const Join whole = MatchPair(GetParam().first, GetParam().second, {});
  const auto attempt = [&](size_t passing) {
    const FailingAllocator memory(passing, FailingAllocator::First);
    try {
      const Join join = MatchPair(GetParam().first, GetParam().second, {});
      EXPECT_FALSE(memory.HasFailed());
      EXPECT_EQ(join.motion, whole.motion);
      EXPECT_EQ(join.verdict, whole.verdict);
    } catch (const cv::Exception& error) {
      EXPECT_EQ(error.code, cv::Error::StsNoMem);
      EXPECT_TRUE(memory.HasFailed());
    }
    return memory.HasFailed();
  };
  const size_t liveBefore = FailingAllocator::LiveMatrices();
  EXPECT_GT(CountFailingAttempts(attempt), 3);
  EXPECT_EQ(FailingAllocator::LiveMatrices(), liveBefore);
}

cv::Mat ArticleAt(int row) { return Window(DrawArticle({240, 500}, 5), {240, 200}, {0, row}); }

INSTANTIATE_TEST_SUITE_P(Pairs, MatchingAllocations,
                         testing::Values(Pair{"Text", ArticleAt(0), ArticleAt(60)},
                                         Pair{"Noise", WithNoise(ArticleAt(0), 1),
                                              WithNoise(ArticleAt(60), 2)},
                                         Pair{"Nothing", ArticleAt(0), DrawPhoto({240, 200}, 3)}),
                         [](const auto& test) { return test.param.name; });

TEST(CapturePlacerAllocations, PlaceNothingWhenTheyFail) {
  const cv::Mat page = DrawArticle({200, 900}, 6);
  std::vector<cv::Mat> captures;
  for (const int row : {0, 70, 600, 130}) {
    captures.push_back(Window(page, {200, 120}, {0, row}));
  }
  const auto provider = ProviderOf(captures);
  const auto attempt = [&](size_t passing) {
    CapturePlacer placer(*provider, {});
    for (std::size_t i = 0; i < 3; ++i) {
      placer.Place(i, PreparedCapture(captures[i]));
    }
    const PreparedCapture last = PreparedCapture(captures[3]);
    bool hasFailed = false;
    {
      const FailingAllocator memory(passing, FailingAllocator::First);
      try {
        placer.Place(3, last);
      } catch (const cv::Exception&) {
        EXPECT_EQ(placer.Count(), 3);
      }
      hasFailed = memory.HasFailed();
    }
    if (placer.Count() == 3) {
      placer.Place(3, last);
    }
    EXPECT_EQ(placer.At(3).place, (Place{130, 0}));
    EXPECT_EQ(placer.At(3).part, 1);
    return hasFailed;
  };
  EXPECT_GT(CountFailingAttempts(attempt), 3);
}

}  // namespace
}  // namespace ScrollingCapture
