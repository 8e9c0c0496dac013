#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace ScrollingCapture {

/// Orders items by a key of 32 bits; items of equal keys keep their order. Takes a time that grows
/// with the number of items alone, a few times less than std::sort for tens of thousands.
template <typename Item, typename KeyOf>
void RadixSort(std::vector<Item>& items, KeyOf keyOf) {
  constexpr int DigitBits = 11;
  constexpr std::uint32_t DigitMask = (1U << DigitBits) - 1;
  std::vector<Item> sorted(items.size());
  for (int shift = 0; shift < 32; shift += DigitBits) {
    std::array<std::size_t, DigitMask + 1> starts{};
    for (const Item& item : items) {
      ++starts[keyOf(item) >> shift & DigitMask];
    }
    std::size_t start = 0;
    for (std::size_t& count : starts) {
      const std::size_t next = start + count;
      count = start;
      start = next;
    }
    for (const Item& item : items) {
      sorted[starts[keyOf(item) >> shift & DigitMask]++] = item;
    }
    items.swap(sorted);
  }
}

}  // namespace ScrollingCapture
