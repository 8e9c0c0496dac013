#include <algorithm>
#include <unordered_map>

#include <live/LineMotion.h>

namespace ScrollingCapture::Live {
namespace {

constexpr int FewestVotes = 8;
constexpr int SeveralTimes = -1;

std::uint64_t NumberOf(const std::uint32_t* pixels, int count) {
  constexpr std::uint64_t Factor = 0x9E3779B97F4A7C15U;  // odd, and without a pattern
  std::uint64_t number = 0;
  for (int i = 0; i < count; ++i) {
    number = (number ^ pixels[i]) * Factor;
    number ^= number >> 32;
  }
  return number | 1U;
}

/// Where each number is that occurs once.
std::unordered_map<std::uint64_t, int> PlacesOf(const std::vector<std::uint64_t>& lines) {
  std::unordered_map<std::uint64_t, int> places;
  places.reserve(lines.size());
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const auto [place, isNew] = places.emplace(lines[i], static_cast<int>(i));
    place->second = isNew ? place->second : SeveralTimes;
  }
  places.erase(0);
  return places;
}

/// How many lines speak for each motion; that of no motion is in the middle.
std::vector<int> VotesOf(const std::vector<std::uint64_t>& before,
                         const std::vector<std::uint64_t>& now) {
  const auto placesBefore = PlacesOf(before);
  std::vector<int> votes(2 * now.size());
  const auto still = votes.begin() + static_cast<std::ptrdiff_t>(now.size());
  for (const auto& [number, place] : PlacesOf(now)) {
    const auto found = placesBefore.find(number);
    if (place != SeveralTimes && found != placesBefore.end() && found->second != SeveralTimes) {
      ++still[place - found->second];
    }
  }
  return votes;
}

}  // namespace

std::vector<std::uint64_t> LineNumbers(const cv::Mat& pixels) {
  std::vector<std::uint64_t> numbers(static_cast<std::size_t>(pixels.rows));
  std::uint64_t above = 0;
  for (int row = 0; row < pixels.rows; ++row) {
    const std::uint64_t number = NumberOf(pixels.ptr<std::uint32_t>(row), pixels.cols);
    numbers[static_cast<std::size_t>(row)] = number == above ? 0 : number;
    above = number;
  }
  return numbers;
}

std::optional<int> LineMotion(const std::vector<std::uint64_t>& before,
                              const std::vector<std::uint64_t>& now) {
  std::vector<int> votes = VotesOf(before, now);
  const auto still = votes.begin() + static_cast<std::ptrdiff_t>(now.size());
  const int standing = std::exchange(*still, 0);
  const auto best = std::max_element(votes.begin(), votes.end());
  const int moving = std::exchange(*best, 0);
  const int rivals = *std::max_element(votes.begin(), votes.end());
  if (moving >= FewestVotes && moving > 2 * rivals) {
    return static_cast<int>(best - still);
  }
  return standing >= FewestVotes && standing > 2 * moving ? std::make_optional(0) : std::nullopt;
}

}  // namespace ScrollingCapture::Live
