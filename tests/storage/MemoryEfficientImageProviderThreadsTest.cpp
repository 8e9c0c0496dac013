#include <algorithm>
#include <atomic>
#include <functional>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <testkit/SpillTesting.h>
#include <testkit/TemporaryFolder.h>

namespace ScrollingCapture {
namespace {

using Testing::TemporaryFolder;

constexpr int RoundsOfAThread = 150;
constexpr int SharedCaptures = 12;
constexpr unsigned long CaptureBytes = 16UL * 8 * 4;
constexpr int VersionsOfACapture = 1000000;

/// A capture whose every pixel is the same number.
cv::Mat Numbered(int number) { return {8, 16, CV_32SC1, cv::Scalar(number)}; }

int NumberOf(const cv::Mat& capture) {
  const int number = capture.at<int>(0, 0);
  EXPECT_EQ(capture.size(), cv::Size(16, 8));
  EXPECT_EQ(cv::countNonZero(capture != number), 0);
  return number;
}

/// Captures 0 to SharedCaptures - 1 are read and replaced all the time, each by a number that tells
/// its index; others are added behind them with negative numbers.
class MemoryEfficientImageProviderThreadsTest : public testing::Test {
 protected:
  MemoryEfficientImageProviderThreadsTest() {
    for (int index = 0; index < SharedCaptures; ++index) {
      cv::Mat capture = Numbered(index * VersionsOfACapture);
      provider.Add(capture);
    }
  }

  void Start(const std::function<void()>& work) { threads.emplace_back(work); }

  void JoinAll() {
    for (std::thread& thread : threads) {
      thread.join();
    }
  }

  void Read(unsigned int seed) {
    std::minstd_rand random(seed);
    for (int round = 0; round < RoundsOfAThread; ++round) {
      const auto index = static_cast<int>(random() % SharedCaptures);
      const std::shared_ptr<cv::Mat> capture = provider.GetImageAt(static_cast<size_t>(index));
      EXPECT_EQ(NumberOf(*capture) / VersionsOfACapture, index);
    }
  }

  void Replace(unsigned int seed) {
    std::minstd_rand random(seed);
    for (int round = 0; round < RoundsOfAThread; ++round) {
      const auto index = static_cast<int>(random() % SharedCaptures);
      cv::Mat capture = Numbered(index * VersionsOfACapture + round);
      provider.SetImageAt(static_cast<size_t>(index), capture);
    }
  }

  void Append(int adder) {
    for (int round = 0; round < RoundsOfAThread; ++round) {
      cv::Mat capture = Numbered(-(adder * RoundsOfAThread + round) - 1);
      provider.Add(capture);
      NumberOf(*provider.GetLastImage());
    }
  }

  void Watch() {
    for (int round = 0; round < RoundsOfAThread; ++round) {
      EXPECT_GE(provider.Count(), static_cast<size_t>(SharedCaptures));
      EXPECT_FALSE(provider.IsEmpty());
      EXPECT_LE(provider.GetMemoryUsage(), 4 * CaptureBytes);
      provider.IsMatLoaded(0);
      provider.IsMatSaved(0);
      provider.UnloadMat();
    }
  }

  TemporaryFolder folder;
  MemoryEfficientImageProvider provider{folder.Prefix(), 4 * CaptureBytes};
  std::vector<std::thread> threads;
};

TEST_F(MemoryEfficientImageProviderThreadsTest, ReadAddAndReplaceAtOnce) {
  constexpr int adders = 2;
  for (unsigned int i = 1; i <= 3; ++i) {
    Start([this, i] { Read(i); });
  }
  for (unsigned int i = 1; i <= 2; ++i) {
    Start([this, i] { Replace(100 + i); });
  }
  for (int i = 0; i < adders; ++i) {
    Start([this, i] { Append(i); });
  }
  Start([this] { Watch(); });
  JoinAll();

  std::vector<int> added;
  for (size_t i = 0; i < provider.Count(); ++i) {
    const int number = NumberOf(*provider.GetImageAt(i));
    if (i < SharedCaptures) {
      EXPECT_EQ(static_cast<size_t>(number / VersionsOfACapture), i);
    } else {
      added.push_back(number);
    }
  }
  std::vector<int> expected;
  for (int number = 1; number <= adders * RoundsOfAThread; ++number) {
    expected.push_back(-number);
  }
  EXPECT_THAT(added, testing::UnorderedElementsAreArray(expected));

  provider.Clear();
  EXPECT_TRUE(folder.Contents().empty());
}

TEST_F(MemoryEfficientImageProviderThreadsTest, ReadWhileAnotherClears) {
  MemoryEfficientImageProvider cleared(folder.Prefix(), 0);
  const auto addThenClear = [&cleared] {
    for (int round = 0; round < RoundsOfAThread; ++round) {
      cv::Mat capture = Numbered(round);
      cleared.Add(capture);
      cleared.Add(capture);
      cleared.Add(capture);
      cleared.Clear();
    }
  };
  Start(addThenClear);
  Start(addThenClear);
  Start([&cleared] {
    for (int round = 0; round < RoundsOfAThread; ++round) {
      cleared.GetMemoryUsage();
      cleared.UnloadMat();
    }
  });
  JoinAll();
  EXPECT_TRUE(cleared.IsEmpty());
  provider.Clear();
  EXPECT_TRUE(folder.Contents().empty());
}

TEST_F(MemoryEfficientImageProviderThreadsTest, SpillIntoOneFolderFromManyProviders) {
  for (int i = 0; i < 4; ++i) {
    Start([this, i] {
      MemoryEfficientImageProvider own(folder.Prefix(), 0);
      for (int round = 0; round < RoundsOfAThread; ++round) {
        cv::Mat capture = Numbered(i * RoundsOfAThread + round);
        own.Add(capture);
      }
      for (int round = 0; round < RoundsOfAThread; ++round) {
        EXPECT_EQ(NumberOf(*own.GetImageAt(static_cast<size_t>(round))),
                  i * RoundsOfAThread + round);
      }
    });
  }
  JoinAll();
  provider.Clear();
  EXPECT_TRUE(folder.Contents().empty());
}

}  // namespace
}  // namespace ScrollingCapture
