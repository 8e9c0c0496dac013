#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <testkit/pages/ScrolledCaptures.h>

#include <VelScrollingCapture/frontend/StitcherAdapter.h>

namespace ScrollingCapture {
namespace {

using testing::AllOf;
using testing::Ge;
using testing::InSequence;
using testing::Le;
using testing::Return;

class MockListener : public IStitcherListener {
 public:
  MOCK_METHOD(bool, ProgressCallback, (int), (override));
  MOCK_METHOD(void, StitchingComplete, (bool), (override));
  MOCK_METHOD(bool, StitchingError, (StitcherErrorCodes, bool), (override));
};

void AddAll(StitcherAdapter& adapter, std::vector<cv::Mat> captures) {
  for (cv::Mat& capture : captures) {
    adapter.Add(capture);
  }
}

TEST(StitcherAdapter, HasNoResultBeforeAStitch) {
  StitcherAdapter adapter;
  EXPECT_TRUE(adapter.IsEmpty());
  EXPECT_TRUE(adapter.getResult().empty());
}

TEST(StitcherAdapter, FailsWithoutCapturesAndTellsTheListener) {
  StitcherAdapter adapter;
  MockListener listener;
  adapter.setProgressListener(&listener);
  const InSequence sequence;
  EXPECT_CALL(listener, StitchingError(IStitcherListener::NoImages, false));
  EXPECT_CALL(listener, StitchingComplete(false));
  EXPECT_FALSE(adapter.stitchImages());
  EXPECT_TRUE(adapter.getResult().empty());
}

TEST(StitcherAdapter, StitchesItsOwnCapturesFrom0To100AndAnnouncesCompletion) {
  StitcherAdapter adapter(ScrollOrientation::Both, false, 2);
  AddAll(adapter, Testing::ScrolledCaptures(3));
  MockListener listener;
  adapter.setProgressListener(&listener);
  EXPECT_CALL(listener, ProgressCallback(AllOf(Ge(0), Le(99)))).WillRepeatedly(Return(true));
  EXPECT_CALL(listener, ProgressCallback(100)).WillOnce(Return(true));
  EXPECT_CALL(listener, StitchingComplete(true));
  EXPECT_TRUE(adapter.stitchImages());
  EXPECT_TRUE(Testing::SameBits(adapter.getResult(), Testing::ScrolledPage(3)));
}

TEST(StitcherAdapter, StitchesWithoutAListener) {
  StitcherAdapter adapter;
  AddAll(adapter, Testing::ScrolledCaptures(2));
  EXPECT_TRUE(adapter.stitchImages());
  EXPECT_TRUE(Testing::SameBits(adapter.getResult(), Testing::ScrolledPage(2)));
}

}  // namespace
}  // namespace ScrollingCapture
