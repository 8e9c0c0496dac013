#include <atomic>
#include <chrono>
#include <future>
#include <stdexcept>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <live/CaptureAdding.h>
#include <testkit/MatrixTesting.h>

namespace ScrollingCapture::Live {
namespace {

using Testing::NoiseCapture;

constexpr std::chrono::minutes Long(1);

class Adding : public ::testing::Test {
 protected:
  cv::Mat At(int row) const { return page({0, row, 200, 160}).clone(); }

  const cv::Mat page = NoiseCapture({200, 1000}, 9);
  CaptureSession session{SessionSettings()};
  std::vector<cv::Mat> heard;
  CaptureAdding adding{session, [this](const cv::Mat& capture) { heard.push_back(capture); }};
};

TEST_F(Adding, HandsCapturesToTheSessionInTheirOrder) {
  for (const int row : {0, 50, 100}) {
    adding.Add(At(row));
  }
  ASSERT_TRUE(adding.FinishWithin(Long));
  ASSERT_EQ(heard.size(), 3U);
  EXPECT_TRUE(Testing::SameBits(heard[1], At(50)));
  const RecordingStatus status = adding.Status();
  EXPECT_EQ(status.captures, 3U);
  EXPECT_EQ(status.seen, cv::Rect(0, 0, 200, 260));
  EXPECT_EQ(status.place, (Place{100, 0}));
}

TEST(AddingThatTakesLong, IsNotWaitedForLonger) {
  std::atomic<bool> goOn{false};
  CaptureSession session{SessionSettings()};
  CaptureAdding adding(session, [&goOn](const cv::Mat&) {
    while (!goOn) {
      std::this_thread::yield();
    }
  });
  adding.Add(NoiseCapture({200, 160}, 1));
  EXPECT_FALSE(adding.FinishWithin(std::chrono::milliseconds(1)));
  goOn = true;
  EXPECT_TRUE(adding.FinishWithin(Long));
}

TEST(AddingThatTakesLong, LetsOnlySomeCapturesWait) {
  constexpr int Captures = 40;
  const cv::Mat page = NoiseCapture({200, 1000}, 9);
  std::atomic<bool> goOn{false};
  CaptureSession session{SessionSettings()};
  CaptureAdding adding(session, [&goOn](const cv::Mat&) {
    while (!goOn) {
      std::this_thread::yield();
    }
  });
  const auto all = std::async(std::launch::async, [&] {
    for (int i = 0; i < Captures; ++i) {
      adding.Add(page({0, 20 * i, 200, 160}));
    }
  });
  EXPECT_EQ(all.wait_for(std::chrono::milliseconds(200)), std::future_status::timeout);
  goOn = true;
  all.wait();
  ASSERT_TRUE(adding.FinishWithin(Long));
  EXPECT_EQ(adding.Status().captures, std::size_t{Captures});
}

TEST_F(Adding, CountsNoRepeats) {
  adding.Add(At(0));
  adding.Add(At(0));
  ASSERT_TRUE(adding.FinishWithin(Long));
  EXPECT_EQ(adding.Status().captures, 1U);
  EXPECT_EQ(heard.size(), 1U);
}

TEST_F(Adding, SaysTooFastUntilItIsBackAtWhatWasSeen) {
  adding.Add(At(0));
  adding.Add(At(60));
  adding.Add(At(400));
  ASSERT_TRUE(adding.FinishWithin(Long));
  EXPECT_TRUE(adding.Status().tooFast);
  EXPECT_EQ(adding.Status().lastJoined, (Place{60, 0}));
  EXPECT_EQ(adding.Status().seen, cv::Rect(0, 0, 200, 220));
  for (const int row : {300, 200, 130}) {
    adding.Add(At(row));
  }
  ASSERT_TRUE(adding.FinishWithin(Long));
  EXPECT_FALSE(adding.Status().tooFast);
  EXPECT_EQ(adding.Status().place, (Place{130, 0}));
  EXPECT_EQ(adding.Status().seen, cv::Rect(0, 0, 200, 560));
}

TEST(AddingThatFails, IsToldToTheCaller) {
  CaptureSession session{SessionSettings()};
  CaptureAdding adding(session, [](const cv::Mat&) { throw std::runtime_error("full"); });
  adding.Add(NoiseCapture({200, 160}, 1));
  EXPECT_THROW(adding.FinishWithin(Long), std::runtime_error);
  EXPECT_THROW(adding.Add(NoiseCapture({200, 160}, 2)), std::runtime_error);
}

}  // namespace
}  // namespace ScrollingCapture::Live
