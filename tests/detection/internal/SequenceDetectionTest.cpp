#include <mutex>
#include <set>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <testkit/RecordingListener.h>
#include <testkit/pages/NumberedCaptures.h>

#include <VelScrollingCapture/detection/internal/SequenceDetection.h>

namespace ScrollingCapture {
namespace {

using testing::ElementsAre;
using Testing::NumberedCaptures;
using Testing::NumberOf;

constexpr SequenceDetection::Settings OneWorker = {false, 1, 0, 100};

TEST(SequenceDetection, GivesEveryPairItsIndexAndItsCaptures) {
  BasicImageProvider captures = NumberedCaptures(4);
  std::mutex mutex;
  std::set<std::vector<size_t>> pairs;
  const auto detectPair = [&](size_t pair, const cv::Mat& first, const cv::Mat& second,
                              Translation& /*alternative*/) {
    const std::lock_guard<std::mutex> lock(mutex);
    pairs.insert({pair, NumberOf(first), NumberOf(second)});
    return Translation(static_cast<int>(pair), 0);
  };
  SequenceDetection detection(detectPair, captures, nullptr, {false, 2, 0, 100});
  EXPECT_THAT(detection.Run(),
              ElementsAre(Translation(0, 0), Translation(1, 0), Translation(2, 0)));
  EXPECT_THAT(pairs, ElementsAre(ElementsAre(0, 0, 1), ElementsAre(1, 1, 2), ElementsAre(2, 2, 3)));
}

TEST(SequenceDetection, PrefersAlternativesOnlyWhenConsistencyIsExpected) {
  BasicImageProvider captures = NumberedCaptures(3);
  const auto detectPair = [](size_t pair, const cv::Mat& /*first*/, const cv::Mat& /*second*/,
                             Translation& alternative) {
    alternative = {-50, 0};
    return pair == 0 ? Translation(-50, 0) : Translation(7, 7);
  };
  EXPECT_THAT(SequenceDetection(detectPair, captures, nullptr, OneWorker).Run(),
              ElementsAre(Translation(-50, 0), Translation(7, 7)));
  EXPECT_THAT(SequenceDetection(detectPair, captures, nullptr, {true, 1, 0, 100}).Run(),
              ElementsAre(Translation(-50, 0), Translation(-50, 0)));
}

TEST(SequenceDetection, StartsNoFurtherPairOnceItIsCancelled) {
  BasicImageProvider captures = NumberedCaptures(40);
  size_t started = 0;
  const auto detectPair = [&](size_t /*pair*/, const cv::Mat& /*first*/, const cv::Mat& /*second*/,
                              Translation& /*alternative*/) {
    ++started;
    return Translation();
  };
  Testing::RecordingListener refusing(0);
  EXPECT_TRUE(SequenceDetection(detectPair, captures, &refusing, OneWorker).Run().empty());
  EXPECT_LE(started, 2U) << "The dispatcher may have waited for the first one already";
}

}  // namespace
}  // namespace ScrollingCapture
