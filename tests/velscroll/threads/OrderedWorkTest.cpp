#include <atomic>
#include <chrono>
#include <future>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <velscroll/threads/OrderedWork.h>

namespace ScrollingCapture {
namespace {

using Program::OrderedWork;

constexpr int ItemCount = 50;

class WithThreads : public ::testing::TestWithParam<unsigned int> {};

/// Every other item takes a while, so that later ones overtake it.
TEST_P(WithThreads, SecondStepsFollowTheOrderOfTheItems) {
  std::vector<int> firstResults(ItemCount);
  std::vector<int> delivered;
  OrderedWork work(GetParam());
  for (int i = 0; i < ItemCount; ++i) {
    work.Add(
        [&firstResults, i] {
          std::this_thread::sleep_for(std::chrono::milliseconds(i % 2));
          firstResults[static_cast<size_t>(i)] = i;
        },
        [&firstResults, &delivered, i] {
          delivered.push_back(firstResults[static_cast<size_t>(i)]);
        });
  }
  work.Finish();
  ASSERT_EQ(delivered.size(), size_t{ItemCount});
  for (int i = 0; i < ItemCount; ++i) {
    EXPECT_EQ(delivered[static_cast<size_t>(i)], i);
  }
}

TEST_P(WithThreads, AFailureOfAFirstStepIsThrownAndNothingComesAfterIt) {
  std::atomic<int> delivered = 0;
  OrderedWork work(GetParam());
  const auto addAll = [&] {
    for (int i = 0; i < ItemCount; ++i) {
      work.Add(
          [i] {
            if (i == 3) {
              throw std::runtime_error("the third");
            }
          },
          [&delivered] { ++delivered; });
    }
    work.Finish();
  };
  EXPECT_THROW(addAll(), std::runtime_error);
  EXPECT_LE(delivered, 3);
  EXPECT_THROW(work.Finish(), std::runtime_error);
}

TEST_P(WithThreads, AFailureOfASecondStepIsThrown) {
  OrderedWork work(GetParam());
  const auto addAll = [&work] {
    for (int i = 0; i < ItemCount; ++i) {
      work.Add([] {}, [] { throw std::runtime_error("a full disk"); });
    }
    work.Finish();
  };
  EXPECT_THROW(addAll(), std::runtime_error);
}

TEST_P(WithThreads, WhatHasNotBegunIsDroppedAtTheEndOfIt) {
  const auto inUse = std::make_shared<int>(0);
  {
    OrderedWork work(GetParam());
    work.Add([inUse] {}, [inUse] {});
  }
  EXPECT_EQ(inUse.use_count(), 1);
}

TEST_P(WithThreads, OnlySoManyItemsAreHeldAtOnce) {
  std::atomic<int> held = 0;
  int most = 0;
  OrderedWork work(GetParam());
  for (int i = 0; i < ItemCount; ++i) {
    most = std::max(most, ++held);
    work.Add([] { std::this_thread::sleep_for(std::chrono::microseconds(100)); },
             [&held] { --held; });
  }
  work.Finish();
  EXPECT_LE(most, static_cast<int>(2 * GetParam()) + 1);
  EXPECT_EQ(held, 0);
}

INSTANTIATE_TEST_SUITE_P(OrderedWork, WithThreads, ::testing::Values(1U, 2U, 5U),
                         [](const auto& threads) { return std::to_string(threads.param); });

TEST(OrderedWork, HoldsNoMoreThanMemoryAllowsForManyThreads) {
  std::atomic<int> held = 0;
  int most = 0;
  OrderedWork work(1000);
  for (int i = 0; i < 200; ++i) {
    most = std::max(most, ++held);
    work.Add([] { std::this_thread::sleep_for(std::chrono::milliseconds(1)); },
             [&held] { --held; });
  }
  work.Finish();
  EXPECT_LE(most, 33);
}

/// Each first step waits for the other.
TEST(OrderedWork, DoesFirstStepsAtOnce) {
  std::promise<void> one;
  std::promise<void> other;
  OrderedWork work(2);
  work.Add([&] { one.set_value(), other.get_future().wait(); }, [] {});
  work.Add([&] { other.set_value(), one.get_future().wait(); }, [] {});
  work.Finish();
}

TEST(OrderedWork, NeedsNoOtherThread) {
  const std::thread::id caller = std::this_thread::get_id();
  std::vector<std::thread::id> threads;
  OrderedWork work(1);
  for (int i = 0; i < ItemCount; ++i) {
    work.Add([&] { threads.push_back(std::this_thread::get_id()); },
             [&] { threads.push_back(std::this_thread::get_id()); });
  }
  work.Finish();
  EXPECT_THAT(threads, ::testing::Each(caller));
  EXPECT_EQ(threads.size(), size_t{2 * ItemCount});
}

}  // namespace
}  // namespace ScrollingCapture
