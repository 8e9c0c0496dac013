#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <iterator>
#include <tuple>

#include <VelScrollingCapture/matching/internal/Votes.h>

namespace ScrollingCapture {
namespace {

using Anchors = std::vector<Anchor>;

/// The anchors of one hash.
struct Group {
  Anchors::const_iterator first;
  Anchors::const_iterator last;

  std::size_t Count() const { return static_cast<std::size_t>(last - first); }
};

Group GroupAt(const Anchors& anchors, Anchors::const_iterator first) {
  return {first, std::find_if(first, anchors.end(), [first](const Anchor& anchor) {
            return anchor.hash != first->hash;
          })};
}

/// Calls visit(earlier group, later group) for each hash that is in both, until it returns false.
template <typename Visit>
void ForEachSharedHash(const CaptureAnchors& earlier, const CaptureAnchors& later, Visit visit) {
  auto left = earlier.anchors.begin();
  auto right = later.anchors.begin();
  while (left != earlier.anchors.end() && right != later.anchors.end()) {
    if (left->hash < right->hash) {
      ++left;
    } else if (right->hash < left->hash) {
      ++right;
    } else {
      const Group leftGroup = GroupAt(earlier.anchors, left);
      const Group rightGroup = GroupAt(later.anchors, right);
      if (!visit(leftGroup, rightGroup)) {
        return;
      }
      left = leftGroup.last;
      right = rightGroup.last;
    }
  }
}

constexpr std::size_t InitialSlots = 1024;

std::size_t HashOf(const cv::Point& motion) {
  const std::uint64_t both = std::uint64_t{static_cast<std::uint32_t>(motion.x)} << 32 |
                             static_cast<std::uint32_t>(motion.y);
  return static_cast<std::size_t>(both * 0x9E3779B97F4A7C15U >> 24);
}

/// How many pairs of equal anchors vote at most: of one hash, and altogether.
constexpr std::size_t MostPairsOfHash = 4096;
constexpr std::size_t MostPairs = 1'000'000;

}  // namespace

MotionTally::MotionTally() : slots(InitialSlots) {}

void MotionTally::Add(const cv::Point& motion) {
  CountedMotion& slot = SlotOf(motion);
  if (slot.votes++ == 0) {
    slot.motion = motion;
    if (++used * 2 > slots.size()) {
      Grow();
    }
  }
}

std::vector<CountedMotion> MotionTally::Ordered() const {
  std::vector<CountedMotion> counted;
  counted.reserve(used);
  std::copy_if(slots.begin(), slots.end(), std::back_inserter(counted),
               [](const CountedMotion& slot) { return slot.votes > 0; });
  std::sort(counted.begin(), counted.end(), [](const auto& left, const auto& right) {
    return left.votes != right.votes ? left.votes > right.votes
                                     : IsSmaller(left.motion, right.motion);
  });
  return counted;
}

CountedMotion& MotionTally::SlotOf(const cv::Point& motion) {
  std::size_t slot = HashOf(motion) & (slots.size() - 1);
  while (slots[slot].votes > 0 && slots[slot].motion != motion) {
    slot = (slot + 1) & (slots.size() - 1);
  }
  return slots[slot];
}

void MotionTally::Grow() {
  std::vector<CountedMotion> smaller(slots.size() * 2);
  smaller.swap(slots);
  for (const CountedMotion& counted : smaller) {
    if (counted.votes > 0) {
      SlotOf(counted.motion) = counted;
    }
  }
}

bool IsAllowed(const cv::Point& motion, ScrollOrientation orientation) {
  switch (orientation) {
    case Both:
      return true;
    case Vertical:
      return motion.x == 0;
    case Horizontal:
      return motion.y == 0;
    default:
      return motion == cv::Point();
  }
}

bool AreNeighbours(const cv::Point& one, const cv::Point& other) {
  return std::abs(one.x - other.x) <= 1 && std::abs(one.y - other.y) <= 1;
}

std::vector<cv::Point> NeighboursOf(const cv::Point& motion, ScrollOrientation orientation) {
  std::vector<cv::Point> neighbours;
  for (int y = -1; y <= 1; ++y) {
    for (int x = -1; x <= 1; ++x) {
      const cv::Point neighbour = motion + cv::Point(x, y);
      if (neighbour != motion && IsAllowed(neighbour, orientation)) {
        neighbours.push_back(neighbour);
      }
    }
  }
  return neighbours;
}

bool IsMotionOfPart(const cv::Point& part, const cv::Point& motion) {
  return part == cv::Point(0, 0) || part == cv::Point(motion.x, 0) ||
         part == cv::Point(0, motion.y);
}

bool IsSmaller(const cv::Point& left, const cv::Point& right) {
  const auto order = [](const cv::Point& motion) {
    return std::tuple(std::int64_t{std::abs(motion.x)} + std::abs(motion.y), motion.y, motion.x);
  };
  return order(left) < order(right);
}

std::vector<Match> UniqueMatches(const CaptureAnchors& earlier, const CaptureAnchors& later,
                                 ScrollOrientation orientation) {
  std::vector<Match> matches;
  ForEachSharedHash(earlier, later, [&](const Group& left, const Group& right) {
    if (left.Count() == 1 && right.Count() == 1) {
      const cv::Point place = later.PlaceOf(*right.first);
      const cv::Point motion = place - earlier.PlaceOf(*left.first);
      if (IsAllowed(motion, orientation)) {
        matches.push_back({place, motion, right.first->hash});
      }
    }
    return true;
  });
  return matches;
}

std::vector<CountedMotion> CountMotions(const std::vector<Match>& matches) {
  MotionTally tally;
  for (const Match& match : matches) {
    tally.Add(match.motion);
  }
  return tally.Ordered();
}

std::vector<CountedMotion> MotionsOfRepeatedAnchors(const CaptureAnchors& earlier,
                                                    const CaptureAnchors& later,
                                                    ScrollOrientation orientation) {
  MotionTally tally;
  std::size_t pairs = 0;
  ForEachSharedHash(earlier, later, [&](const Group& left, const Group& right) {
    const std::size_t lefts = std::min(left.Count(), MostPairsOfHash);
    const std::size_t rights = std::min(right.Count(), MostPairsOfHash / lefts);
    if (left.Count() > 1 || right.Count() > 1) {
      for (auto one = right.first; one != right.first + static_cast<std::ptrdiff_t>(rights);
           ++one) {
        for (auto other = left.first; other != left.first + static_cast<std::ptrdiff_t>(lefts);
             ++other) {
          const cv::Point motion = later.PlaceOf(*one) - earlier.PlaceOf(*other);
          if (IsAllowed(motion, orientation)) {
            tally.Add(motion);
          }
        }
      }
      pairs += rights * lefts;
    }
    return pairs < MostPairs;
  });
  return tally.Ordered();
}

}  // namespace ScrollingCapture
