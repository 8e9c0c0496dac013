#include <algorithm>
#include <cstdlib>
#include <map>
#include <utility>

#include <VelScrollingCapture/matching/internal/SeenAnchors.h>
#include <VelScrollingCapture/matching/internal/Votes.h>

namespace ScrollingCapture {
namespace {

constexpr std::size_t InitialSlots = 4096;

/// The picture's squares have so many pixels a side.
constexpr int SquareSide = 64;

/// Each square may have so many times as many anchors as one picture of it gives.
constexpr int Renewals = 2;

/// Text that is drawn anew may lie this far from where it was, and still be the same.
constexpr int SamePlace = 2;

constexpr int Free = -1;

/// How many zero bits a remembered anchor's hashes have: those of an anchor, and further ones.
int ZeroBitsOf(const CaptureAnchors& capture) {
  const int selecting = SelectingZeroBits(capture.size, CV_MAT_CN(capture.type));
  return std::clamp(selecting + 3, 6, 8);
}

int FurtherZeroBits(const CaptureAnchors& capture) {
  return ZeroBitsOf(capture) - SelectingZeroBits(capture.size, CV_MAT_CN(capture.type));
}

std::uint32_t Mixed(std::uint32_t hash) {
  const std::uint32_t mixed = (hash ^ hash >> 16) * 0x7FEB352DU;
  return (mixed ^ mixed >> 15) * 0x846CA68BU;
}

int RoomOfSquare(const CaptureAnchors& capture) {
  return Renewals * SquareSide * SquareSide >> ZeroBitsOf(capture);
}

std::uint64_t SquareAt(int part, const cv::Point& place) {
  const auto index = [](int coordinate) {
    const int square =
        coordinate >= 0 ? coordinate / SquareSide : -1 - (-1 - coordinate) / SquareSide;
    return static_cast<std::uint64_t>(square) & std::uint64_t{0xFFFFFF};
  };
  return static_cast<std::uint64_t>(part) << 48 | index(place.y) << 24 | index(place.x);
}

bool IsSamePlace(const cv::Point& one, const cv::Point& other) {
  return std::abs(one.x - other.x) <= SamePlace && std::abs(one.y - other.y) <= SamePlace;
}

/// Calls visit(anchor) for the remembered anchors that occur once in a capture.
template <typename Visit>
void ForEachUnique(const CaptureAnchors& capture, Visit visit) {
  const std::vector<Anchor>& anchors = capture.anchors;
  for (std::size_t i = 0; i < anchors.size(); ++i) {
    const bool isUnique = (i == 0 || anchors[i - 1].hash != anchors[i].hash) &&
                          (i + 1 == anchors.size() || anchors[i + 1].hash != anchors[i].hash);
    if (isUnique && SeenAnchors::IsRemembered(anchors[i].hash, capture)) {
      visit(anchors[i]);
    }
  }
}

}  // namespace

SeenAnchors::SeenAnchors(PictureParts& parts)
    : parts(parts), slots(InitialSlots, Sighting{0, 0, 0, Free}), repeated(InitialSlots) {}

bool SeenAnchors::IsRemembered(std::uint32_t hash, const CaptureAnchors& capture) {
  return (Mixed(hash) & ((1U << FurtherZeroBits(capture)) - 1)) == 0;
}

std::size_t SeenAnchors::SlotOf(std::uint32_t hash) const {
  // The upper bits decide: the lower ones are those that anchors are chosen by.
  auto slot = static_cast<std::size_t>(std::uint64_t{Mixed(hash)} * slots.size() >> 32U);
  while (slots[slot].part != Free && slots[slot].hash != hash) {
    slot = slot + 1 < slots.size() ? slot + 1 : 0;
  }
  return slot;
}

std::vector<SeenAnchors::Vote> SeenAnchors::PlacesOf(const CaptureAnchors& capture) const {
  std::map<int, MotionTally> tallies;
  ForEachUnique(capture, [&](const Anchor& anchor) {
    const std::size_t slot = SlotOf(anchor.hash);
    const Sighting& seen = slots[slot];
    if (seen.part != Free && !repeated[slot]) {
      const PartPlace place = parts.Resolve({seen.part, {seen.column, seen.row}});
      tallies[place.part].Add(place.place - capture.PlaceOf(anchor));
    }
  });
  std::vector<Vote> votes;
  for (const auto& [part, tally] : tallies) {
    for (const CountedMotion& counted : tally.Ordered()) {
      votes.push_back({part, counted.motion, counted.votes});
    }
  }
  std::stable_sort(votes.begin(), votes.end(),
                   [](const Vote& left, const Vote& right) { return left.votes > right.votes; });
  return votes;
}

void SeenAnchors::Add(const CaptureAnchors& capture, int part, const cv::Point& place) {
  const int room = RoomOfSquare(capture);
  for (const Anchor& anchor : capture.anchors) {
    if (IsRemembered(anchor.hash, capture)) {
      Note(anchor.hash, part, place + capture.PlaceOf(anchor), room);
    }
  }
}

void SeenAnchors::Note(std::uint32_t hash, int part, const cv::Point& place, int room) {
  const std::size_t slot = SlotOf(hash);
  Sighting& seen = slots[slot];
  if (seen.part != Free) {
    const PartPlace before = parts.Resolve({seen.part, {seen.column, seen.row}});
    const PartPlace now = parts.Resolve({part, place});
    if (before.part == now.part && !IsSamePlace(before.place, now.place)) {
      repeated[slot] = true;
    }
    return;
  }
  std::uint16_t& count = squares[SquareAt(part, place)];
  if (count < room) {
    ++count;
    seen = {hash, place.y, place.x, part};
    if (++used * 4 > slots.size() * 3) {
      Grow();
    }
  }
}

void SeenAnchors::Grow() {
  const std::size_t larger = slots.size() + slots.size() / 4;
  std::vector<Sighting> smaller(larger, Sighting{0, 0, 0, Free});
  std::vector<bool> smallerRepeated(larger);
  smaller.swap(slots);
  smallerRepeated.swap(repeated);
  for (std::size_t i = 0; i < smaller.size(); ++i) {
    if (smaller[i].part != Free) {
      const std::size_t slot = SlotOf(smaller[i].hash);
      slots[slot] = smaller[i];
      repeated[slot] = smallerRepeated[i];
    }
  }
}

bool SeenAnchors::IsRepeated(std::uint32_t hash) const { return repeated[SlotOf(hash)]; }

std::size_t SeenAnchors::Bytes() const {
  constexpr std::size_t BytesOfSquare = 48;
  return slots.size() * sizeof(Sighting) + repeated.size() / 8 + squares.size() * BytesOfSquare;
}

}  // namespace ScrollingCapture
