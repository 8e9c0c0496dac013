#include <atomic>
#include <new>
#include <stdexcept>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <testkit/RecordingListener.h>
#include <testkit/faults/ThrowingListener.h>

#include <VelScrollingCapture/matching/SequenceMatcher.h>

#include "Travel.h"

namespace ScrollingCapture {
namespace {

using namespace Testing;
using testing::ElementsAre;

/// Counts how often captures are read, and refuses one of them.
class CountingProvider : public BasicImageProvider {
 public:
  std::shared_ptr<cv::Mat> GetImageAt(size_t index) override {
    ++reads;
    if (index == refused) {
      throw std::bad_alloc();
    }
    return BasicImageProvider::GetImageAt(index);
  }

  std::atomic<int> reads = 0;
  size_t refused = static_cast<size_t>(-1);
};

/// Throws at the third progress call, from whichever thread that comes.
class RefusingListener : public RecordingListener {
 public:
  bool ProgressCallback(int progress) override {
    if (calls.size() == 2) {
      throw ListenerFailure();
    }
    return RecordingListener::ProgressCallback(progress);
  }
};

std::vector<cv::Mat> Captures() {
  return CapturesAt(DrawArticle({TravelWindow.width, 3000}, 31),
                    {0, 120, 250, 250, 180, 400, 560, 700, 2000, 2100, 600, 810});
}

void Fill(BasicImageProvider& provider, std::vector<cv::Mat> captures) {
  for (cv::Mat& capture : captures) {
    provider.Add(capture);
  }
}

SequenceSettings With(unsigned int threadCount) { return {{}, threadCount, 0, 100}; }

std::vector<int> RowsOf(const std::vector<PlacedCapture>& captures) {
  std::vector<int> rows;
  for (const PlacedCapture& capture : captures) {
    rows.push_back(capture.part * 10000 + capture.place.row);
  }
  return rows;
}

class SequenceMatcherThreads : public testing::TestWithParam<unsigned int> {};

TEST_P(SequenceMatcherThreads, FindTheSamePlaces) {
  BasicImageProvider provider;
  Fill(provider, Captures());
  EXPECT_THAT(RowsOf(MatchSequence(provider, nullptr, With(GetParam()))),
              ElementsAre(10000, 10120, 10250, 10250, 10180, 10400, 10560, 10700, 20000, 20100,
                          10600, 10810));
}

TEST_P(SequenceMatcherThreads, ReadEachCaptureOnceAlongAPlainJourney) {
  CountingProvider provider;
  Fill(provider, CapturesAt(DrawArticle({TravelWindow.width, 2000}, 32),
                            {0, 120, 250, 380, 500, 620, 750, 890, 1000}));
  EXPECT_EQ(MatchSequence(provider, nullptr, With(GetParam())).size(), 9);
  EXPECT_EQ(provider.reads, 9);
}

TEST_P(SequenceMatcherThreads, TellProgressInOrder) {
  BasicImageProvider provider;
  Fill(provider, CapturesAt(DrawArticle({TravelWindow.width, 1000}, 33), {0, 120, 250, 380, 500}));
  RecordingListener listener;
  MatchSequence(provider, &listener, {{}, GetParam(), 10, 90});
  EXPECT_THAT(listener.calls, ElementsAre("progress 30", "progress 50", "progress 70",
                                          "progress 90", "progress 90"));
}

TEST_P(SequenceMatcherThreads, StopWhenTheListenerSaysSo) {
  for (const size_t accepted : {0, 2, 11}) {
    BasicImageProvider provider;
    Fill(provider, Captures());
    RecordingListener listener(accepted);
    EXPECT_TRUE(MatchSequence(provider, &listener, With(GetParam())).empty());
    EXPECT_EQ(listener.calls.size(), accepted + 2);
    EXPECT_EQ(listener.calls.back(), "error 4 false");
  }
}

TEST_P(SequenceMatcherThreads, PassOnWhatTheProviderThrows) {
  for (const size_t refused : {0, 1, 6, 11}) {
    CountingProvider provider;
    Fill(provider, Captures());
    provider.refused = refused;
    EXPECT_THROW(MatchSequence(provider, nullptr, With(GetParam())), std::bad_alloc);
  }
}

TEST_P(SequenceMatcherThreads, PassOnWhatTheListenerThrows) {
  BasicImageProvider provider;
  Fill(provider, Captures());
  RefusingListener listener;
  EXPECT_THROW(MatchSequence(provider, &listener, With(GetParam())), ListenerFailure);
}

TEST_P(SequenceMatcherThreads, RefuseCapturesOfDifferentSizes) {
  BasicImageProvider provider;
  std::vector<cv::Mat> captures = Captures();
  captures[4] = captures[4].rowRange(0, 200);
  Fill(provider, captures);
  EXPECT_THROW(MatchSequence(provider, nullptr, With(GetParam())), std::invalid_argument);
}

INSTANTIATE_TEST_SUITE_P(Counts, SequenceMatcherThreads, testing::Values(0U, 1U, 2U, 5U, 40U),
                         testing::PrintToStringParamName());

TEST(SequenceMatcher, PlacesASingleCaptureAndNone) {
  BasicImageProvider provider;
  EXPECT_TRUE(MatchSequence(provider, nullptr, With(2)).empty());
  Fill(provider, CapturesAt(DrawArticle({TravelWindow.width, 400}, 1), {0}));
  const std::vector<PlacedCapture> placed = MatchSequence(provider, nullptr, With(2));
  ASSERT_EQ(placed.size(), 1);
  EXPECT_EQ(placed[0].part, 1);
  EXPECT_EQ(placed[0].join.verdict, Verdict::None);
}

}  // namespace
}  // namespace ScrollingCapture
