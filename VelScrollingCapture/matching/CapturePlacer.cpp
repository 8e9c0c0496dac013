#include <algorithm>
#include <cstdint>
#include <stdexcept>
#include <utility>

#include <VelScrollingCapture/matching/CapturePlacer.h>
#include <VelScrollingCapture/matching/internal/Comparison.h>
#include <VelScrollingCapture/matching/internal/PairStudy.h>
#include <VelScrollingCapture/matching/internal/PictureParts.h>
#include <VelScrollingCapture/matching/internal/SeenAnchors.h>

namespace ScrollingCapture {
namespace {

/// So many remembered anchors have to agree on a place before captures there are looked at.
constexpr int LeastVotes = 6;

/// So many places, and captures at each, are looked at in vain.
constexpr std::size_t MostPlaces = 3;
constexpr std::size_t MostCapturesOfPlace = 2;

/// A proof is taken back when more than this share of its evidence was seen elsewhere as well.
constexpr std::size_t RepeatedQuarters = 3;

bool IsSure(Verdict verdict) { return verdict == Verdict::Proven || verdict == Verdict::Likely; }

template <typename Item>
void MakeRoom(std::vector<Item>& items) {
  if (items.size() == items.capacity()) {
    items.reserve(2 * items.size() + 16);
  }
}

/// What is remembered of a capture.
struct Record {
  PartPlace place;
  Join join;
  std::optional<std::size_t> joinedTo;
  std::vector<std::uint32_t> evidence;
};

}  // namespace

MatchedPair::MatchedPair(const cv::Mat& earlier, const PreparedCapture& earlierPrepared,
                         const cv::Mat& later, const PreparedCapture& laterPrepared,
                         const MatchingSettings& settings) {
  RequireSameFormat(earlierPrepared.Anchors(), laterPrepared.Anchors());
  match = std::make_shared<const PairMatch>(
      StudyPair({earlier, earlierPrepared.Anchors()}, {later, laterPrepared.Anchors()}, settings));
}

class CapturePlacer::Implementation {
 public:
  Implementation(IImageProvider& captures, const MatchingSettings& settings)
      : captures(captures), settings(settings), seen(parts) {}

  void Place(std::size_t index, const PreparedCapture& capture, const PairMatch& pair) {
    Require(index, capture);
    Record record = index == 0 ? NewPart() : Find(index, capture, pair);
    JoinParts(record.place, index, capture);
    Commit(capture, std::move(record));
  }

  void Place(std::size_t index, const PreparedCapture& capture) {
    Require(index, capture);
    Place(index, capture, index == 0 ? PairMatch() : MatchWithLast(index, capture));
  }

  void PlaceAt(std::size_t index, const PreparedCapture& capture, const cv::Point& motion) {
    Require(index, capture);
    RequirePrescribable(ToTranslation(motion));
    if (index == 0) {
      Place(index, capture, {});
      return;
    }
    Record record = Prescribed(index, capture, motion);
    // What lies wrong must not bring parts together.
    if (record.join.verdict != Verdict::None) {
      JoinParts(record.place, index, capture);
    }
    Commit(capture, std::move(record));
  }

  std::size_t Count() const { return records.size(); }

  PlacedCapture At(std::size_t index) const {
    const Record& record = records.at(index);
    const PartPlace place = parts.Resolve(record.place);
    PlacedCapture placed;
    placed.join = record.join;
    placed.joinedTo = record.joinedTo;
    const auto begins = [this, &place](const Beginning& beginning) {
      return beginning.part <= place.part &&
             parts.Resolve({beginning.part, {}}).part == beginning.part;
    };
    placed.part = static_cast<int>(std::count_if(beginnings.begin(), beginnings.end(), begins));
    const cv::Point relative =
        place.place - parts.Resolve(records[FirstOf(place.part)].place).place;
    placed.place = {relative.y, relative.x};
    placed.join.motion = ToTranslation(MotionSinceBefore(index));
    if (record.join.verdict == Verdict::Proven && IsRefuted(record)) {
      placed.join.verdict = Verdict::Likely;
    }
    return placed;
  }

  std::size_t Bytes() const { return seen.Bytes(); }

 private:
  /// The capture that a part begins with.
  struct Beginning {
    int part;
    std::size_t capture;
  };

  /// An earlier capture, read again.
  struct Earlier {
    std::shared_ptr<cv::Mat> pixels;
    PreparedCapture prepared;
  };

  void Require(std::size_t index, const PreparedCapture& capture) const {
    if (index != records.size()) {
      throw std::invalid_argument("Captures are placed in their order, each one once.");
    }
    if (!records.empty()) {
      RequireSameFormat(last.Anchors(), capture.Anchors());
    }
  }

  Record NewPart() { return {{parts.Add(), {}}, {}, {}, {}}; }

  Record JoinedTo(std::size_t other, PairMatch match) const {
    const PartPlace& place = records[other].place;
    return {{place.part, place.place - ToPoint(match.join.motion)},
            std::move(match.join),
            other,
            std::move(match.evidence)};
  }

  Earlier Read(std::size_t index) const {
    const auto pixels = captures.GetImageAt(index);
    return {pixels, index + 1 == records.size() ? last : PreparedCapture(*pixels)};
  }

  PairMatch MatchWithLast(std::size_t index, const PreparedCapture& capture) const {
    const Earlier earlier = Read(index - 1);
    const auto pixels = captures.GetImageAt(index);
    return StudyPair({*earlier.pixels, earlier.prepared.Anchors()}, {*pixels, capture.Anchors()},
                     settings);
  }

  /// Matches a capture with another one, when its place is known but for proof.
  PairMatch MatchAt(const PartPlace& place, std::size_t other, std::size_t index,
                    const PreparedCapture& capture) const {
    const Earlier earlier = Read(other);
    const auto pixels = captures.GetImageAt(index);
    return StudyExpectedMotion({*earlier.pixels, earlier.prepared.Anchors()},
                               {*pixels, capture.Anchors()},
                               parts.Resolve(records[other].place).place - place.place, settings);
  }

  /// Where the capture lies: as its pair says, or else as what was seen earlier says.
  Record Find(std::size_t index, const PreparedCapture& capture, const PairMatch& pair) {
    if (IsSure(pair.join.verdict)) {
      return JoinedTo(index - 1, pair);
    }
    const std::vector<SeenAnchors::Vote> votes = seen.PlacesOf(capture.Anchors());
    for (std::size_t i = 0; i < std::min(votes.size(), MostPlaces); ++i) {
      if (votes[i].votes >= LeastVotes) {
        if (std::optional<Record> record = FindAt(votes[i], index, capture)) {
          return *std::move(record);
        }
      }
    }
    if (pair.join.verdict == Verdict::None) {
      return NewPart();
    }
    PairMatch doubtful = pair;
    doubtful.join = PreferRepetition(std::move(doubtful.join), StepsBefore(index));
    return JoinedTo(index - 1, std::move(doubtful));
  }

  /// The steps that a capture may be thought to repeat, the latest first: where steps are even, a
  /// pause or a hand on the wheel in between says nothing.
  std::vector<Translation> StepsBefore(std::size_t index) const {
    const std::size_t most = settings.expectConsistentTranslations ? index - 1 : 1;
    std::vector<Translation> steps;
    for (std::size_t i = index - 1; i > 0 && steps.size() < most; --i) {
      steps.push_back(ToTranslation(MotionSinceBefore(i)));
    }
    return steps;
  }

  /// The capture at a place that somebody prescribes, proven against the capture before if that
  /// can be, or else against others that lie there.
  Record Prescribed(std::size_t index, const PreparedCapture& capture,
                    const cv::Point& motion) const {
    const auto study = [&](std::size_t other, const cv::Point& relative) {
      const Earlier earlier = Read(other);
      return StudyMotion({*earlier.pixels, earlier.prepared.Anchors()},
                         {*captures.GetImageAt(index), capture.Anchors()}, relative, settings);
    };
    PairMatch match = study(index - 1, motion);
    const PartPlace before = parts.Resolve(records[index - 1].place);
    const PartPlace place = {before.part, before.place - motion};
    for (const std::size_t other : CapturesAt(place, capture.Anchors().size)) {
      if (IsSure(match.join.verdict)) {
        break;
      }
      PairMatch found = study(other, parts.Resolve(records[other].place).place - place.place);
      if (IsSure(found.join.verdict)) {
        return JoinedTo(other, std::move(found));
      }
    }
    return JoinedTo(index - 1, std::move(match));
  }

  /// Proves the capture against those that lie where it would lie itself.
  std::optional<Record> FindAt(const SeenAnchors::Vote& vote, std::size_t index,
                               const PreparedCapture& capture) const {
    const PartPlace place = {vote.part, vote.place};
    for (const std::size_t other : CapturesAt(place, capture.Anchors().size)) {
      PairMatch match = MatchAt(place, other, index, capture);
      if (IsSure(match.join.verdict)) {
        return JoinedTo(other, std::move(match));
      }
    }
    return std::nullopt;
  }

  /// The captures that show most of a capture's place.
  std::vector<std::size_t> CapturesAt(const PartPlace& place, const cv::Size& size) const {
    std::vector<std::pair<int, std::size_t>> overlaps;
    for (std::size_t i = 0; i < records.size(); ++i) {
      const PartPlace other = parts.Resolve(records[i].place);
      const int area = OverlapOf(size, other.place - place.place).area();
      if (other.part == place.part && area > 0) {
        overlaps.emplace_back(area, i);
      }
    }
    std::sort(overlaps.rbegin(), overlaps.rend());
    overlaps.resize(std::min(overlaps.size(), MostCapturesOfPlace));
    std::vector<std::size_t> found;
    std::transform(overlaps.begin(), overlaps.end(), std::back_inserter(found),
                   [](const auto& overlap) { return overlap.second; });
    return found;
  }

  /// Nothing fails once there is room and the anchors are remembered.
  void Commit(const PreparedCapture& capture, Record record) {
    MakeRoom(records);
    MakeRoom(beginnings);
    seen.Add(capture.Anchors(), record.place.part, record.place.place);
    if (!record.joinedTo) {
      beginnings.push_back({record.place.part, records.size()});
    }
    records.push_back(std::move(record));
    last = capture;
  }

  /// Joins the part of a capture with others that its content was seen in.
  void JoinParts(const PartPlace& placed, std::size_t index, const PreparedCapture& capture) {
    if (!parts.AreSeveral()) {
      return;
    }
    std::size_t failures = 0;
    for (const SeenAnchors::Vote& vote : seen.PlacesOf(capture.Anchors())) {
      if (vote.votes < LeastVotes || failures == MostPlaces) {
        return;
      }
      if (parts.Resolve({vote.part, vote.place}).part != parts.Resolve(placed).part) {
        if (const std::optional<Record> other = FindAt(vote, index, capture)) {
          parts.Join(other->place, placed);
        } else {
          ++failures;
        }
      }
    }
  }

  cv::Point MotionSinceBefore(std::size_t index) const {
    if (index == 0) {
      return {};
    }
    const PartPlace before = parts.Resolve(records[index - 1].place);
    const PartPlace now = parts.Resolve(records[index].place);
    return before.part == now.part ? before.place - now.place : cv::Point();
  }

  /// Of parts that turned out to be one, the oldest one stands for all.
  std::size_t FirstOf(int part) const {
    return std::find_if(beginnings.begin(), beginnings.end(),
                        [part](const Beginning& beginning) { return beginning.part == part; })
        ->capture;
  }

  bool IsRefuted(const Record& record) const {
    const auto repeated = static_cast<std::size_t>(
        std::count_if(record.evidence.begin(), record.evidence.end(),
                      [this](std::uint32_t hash) { return seen.IsRepeated(hash); }));
    return repeated * 4 > record.evidence.size() * RepeatedQuarters;
  }

  IImageProvider& captures;
  const MatchingSettings settings;
  PictureParts parts;
  SeenAnchors seen;
  std::vector<Record> records;
  std::vector<Beginning> beginnings;  ///< of all parts, the oldest first
  PreparedCapture last;
};

CapturePlacer::CapturePlacer(IImageProvider& captures, const MatchingSettings& settings)
    : implementation(std::make_unique<Implementation>(captures, settings)) {}

CapturePlacer::~CapturePlacer() = default;

/// So that places can be added up.
void CapturePlacer::RequirePrescribable(const Translation& motion) {
  const auto isTooLong = [](int distance) {
    return distance > LongestPrescribed || distance < -LongestPrescribed;
  };
  if (isTooLong(motion.GetRows()) || isTooLong(motion.GetCols())) {
    throw std::invalid_argument("A prescribed motion is longer than any window.");
  }
}

PlacedCapture CapturePlacer::Place(std::size_t index, const PreparedCapture& capture) {
  implementation->Place(index, capture);
  return At(index);
}

PlacedCapture CapturePlacer::Place(std::size_t index, const PreparedCapture& capture,
                                   const MatchedPair& pair) {
  implementation->Place(index, capture, pair.Match());
  return At(index);
}

PlacedCapture CapturePlacer::PlaceAt(std::size_t index, const PreparedCapture& capture,
                                     const Translation& motion) {
  implementation->PlaceAt(index, capture, ToPoint(motion));
  return At(index);
}

std::size_t CapturePlacer::Count() const { return implementation->Count(); }

PlacedCapture CapturePlacer::At(std::size_t index) const { return implementation->At(index); }

std::vector<PlacedCapture> CapturePlacer::All() const {
  std::vector<PlacedCapture> all;
  for (std::size_t i = 0; i < Count(); ++i) {
    all.push_back(At(i));
  }
  return all;
}

std::size_t CapturePlacer::Bytes() const { return implementation->Bytes(); }

}  // namespace ScrollingCapture
