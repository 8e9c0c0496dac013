#include <algorithm>
#include <utility>

#include <gtest/gtest.h>
#include <opencv2/core.hpp>

#include <VelScrollingCapture/matching/internal/RadixSort.h>

namespace ScrollingCapture {
namespace {

TEST(RadixSort, OrdersByAllBitsAndKeepsTheOrderOfEqualKeys) {
  cv::RNG random(1);
  std::vector<std::pair<std::uint32_t, int>> items;
  for (int i = 0; i < 5000; ++i) {
    items.emplace_back(i % 3 == 0 ? random.next() : random.next() % 50U << 27U, i);
  }
  std::vector<std::pair<std::uint32_t, int>> expected = items;
  std::stable_sort(expected.begin(), expected.end(),
                   [](const auto& left, const auto& right) { return left.first < right.first; });
  RadixSort(items, [](const auto& item) { return item.first; });
  EXPECT_EQ(items, expected);
}

TEST(RadixSort, TakesNothing) {
  std::vector<std::uint32_t> items;
  RadixSort(items, [](std::uint32_t item) { return item; });
  EXPECT_TRUE(items.empty());
}

}  // namespace
}  // namespace ScrollingCapture
