#include <gtest/gtest.h>
#include <live/ChangedStrip.h>
#include <testkit/MatrixTesting.h>
#include <testkit/pages/Page.h>

namespace ScrollingCapture::Live {
namespace {

using Testing::PlainCapture;

cv::Mat With(const cv::Mat& frame, const cv::Rect& changed) {
  cv::Mat drawn = frame.clone();
  drawn(changed) = cv::Scalar(1, 2, 3, 255);
  return drawn;
}

TEST(ChangedStrip, IsEmptyWhereNothingChanged) {
  const cv::Mat frame = PlainCapture({400, 300}, 90);
  EXPECT_TRUE(ChangedStrip(frame, frame.clone(), StripAxis::Upright).empty());
  EXPECT_TRUE(ChangedStrip(frame, frame.clone(), StripAxis::Level).empty());
}

TEST(ChangedStrip, HoldsTheColumnsThatChangedMost) {
  const cv::Mat frame = PlainCapture({2400, 1200}, 90);
  const cv::Mat now = With(With(frame, {10, 0, 30, 100}), {1000, 0, 200, 1200});
  const cv::Rect strip = ChangedStrip(frame, now, StripAxis::Upright);
  EXPECT_EQ(strip, cv::Rect(900, 0, 300, 1200));
}

TEST(ChangedStrip, HoldsTheRowsThatChangedMost) {
  const cv::Mat frame = PlainCapture({1200, 2400}, 90);
  const cv::Mat now = With(frame, {0, 1000, 1200, 200});
  EXPECT_EQ(ChangedStrip(frame, now, StripAxis::Level), cv::Rect(0, 900, 1200, 300));
}

TEST(ChangedStrip, IsTheWholeOfASmallFrame) {
  const cv::Mat frame = PlainCapture({90, 80}, 90);
  const cv::Mat now = With(frame, {80, 0, 10, 80});
  EXPECT_EQ(ChangedStrip(frame, now, StripAxis::Upright), cv::Rect(0, 0, 90, 80));
}

}  // namespace
}  // namespace ScrollingCapture::Live
