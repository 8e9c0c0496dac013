#include <algorithm>
#include <array>
#include <bitset>
#include <cstddef>
#include <cstdlib>
#include <iterator>

#include <VelScrollingCapture/mosaic/internal/CellDecision.h>
#include <VelScrollingCapture/mosaic/internal/FixedFeatures.h>
#include <VelScrollingCapture/mosaic/internal/PixelComparison.h>

namespace ScrollingCapture {
namespace {

/// Values whose votes weigh as much as each other, within this, are equally frequent. Of them a
/// less suspect one wins, if it is so by this.
constexpr float ClearlyMore = 0.25F;
constexpr float ClearlyLess = 0.1F;

/// A capture that shows a part of a cell.
struct Vote {
  size_t witness;  ///< index among those that show some of the cell
  float suspicion;
  cv::Point place;  ///< in the window
};

/// One of the values that uncovered captures show.
struct Value {
  std::uint32_t value;
  float weight = 0;
  float leastSuspicion = 1;
};

/// How well a covered part stands for what it covers, best first.
enum CoveredRank { BelongsHere, IsPlain, BelongsElsewhere };

/// Pixels of a cell, a bit each, row by row.
using PixelSet = std::uint64_t;

constexpr size_t CellPixels = size_t{CellSize} * CellSize;

constexpr PixelSet SetOf(size_t pixel) { return PixelSet{1} << pixel; }

size_t CountPixels(PixelSet pixels) { return std::bitset<CellPixels>(pixels).count(); }

/// Calls `take(pixel)` for each pixel of a set.
template <typename Take>
void ForEachPixel(PixelSet pixels, Take take) {
  for (size_t pixel = 0; pixel < CellPixels; ++pixel) {
    if ((pixels & SetOf(pixel)) != 0) {
      take(pixel);
    }
  }
}

/// One value a pixel of a cell.
using CellValues = std::array<std::uint32_t, CellPixels>;

PixelSet EqualPixels(const CellValues& left, const CellValues& right) {
  PixelSet equal = 0;
  for (size_t pixel = 0; pixel < CellPixels; ++pixel) {
    equal |= PixelSet{left[pixel] == right[pixel] ? 1U : 0U} << pixel;
  }
  return equal;
}

/// What a strip shows of a cell.
struct Witness {
  const Strip* strip;
  CellValues values{};
  PixelSet right = 0;  ///< where what it shows is right
};

/// Lines, a bit each, at which a row or column of pixels of a cell is cut.
class Cuts {
 public:
  /// Cuts where a part of the cell begins.
  /// @param place counted from the cell's first pixel
  void Add(int place) {
    if (place > 0 && place < CellSize) {
      cuts.set(static_cast<size_t>(place));
    }
  }

  /// Calls `take(begin, length)` for each piece of a length.
  template <typename Take>
  void ForEachPiece(int length, Take take) const {
    int begin = 0;
    for (int end = 1; end <= length; ++end) {
      if (end == length || cuts.test(static_cast<size_t>(end))) {
        take(begin, end - begin);
        begin = end;
      }
    }
  }

 private:
  std::bitset<CellSize> cuts;
};

/// Decides a cell in parts throughout which captures are equally suspect.
class CellJudge {
 public:
  CellJudge(const CaptureLayout& layout, const Suspicion& suspicion, const cv::Rect& area,
            const std::vector<Strip>& strips)
      : layout(layout), suspicion(suspicion), area(area) {
    decision.owners.cell = {area.x / CellSize, area.y / CellSize};
    for (const Strip& strip : strips) {
      if (!(strip.area & area).empty()) {
        AddWitness(strip);
      }
    }
  }

  CellDecision Decide() {
    rowCuts.ForEachPiece(area.height, [&](int row, int height) {
      columnCuts.ForEachPiece(area.width, [&](int column, int width) {
        DecidePart({column, row, width, height});
      });
    });
    AssignOwners();
    return std::move(decision);
  }

 private:
  void AddWitness(const Strip& strip) {
    witnesses.push_back({&strip});
    ReadValues(witnesses.back());
    decision.testimonies.emplace_back();
    decision.testimonies.back().capture = strip.capture;
    // Within the cell a window has at most one line between cells, and one end, in each direction.
    const cv::Point cellLine = layout.CornerOf(strip.capture) - area.tl();
    const cv::Rect inCell = strip.area - area.tl();
    for (const int row : {NextLine(cellLine.y), inCell.y, inCell.y + inCell.height}) {
      rowCuts.Add(row);
    }
    for (const int column : {NextLine(cellLine.x), inCell.x, inCell.x + inCell.width}) {
      columnCuts.Add(column);
    }
  }

  /// The first line at or after the cell's beginning, of lines a cell apart.
  static int NextLine(int line) { return (line % CellSize + CellSize) % CellSize; }

  void ReadValues(Witness& witness) const {
    const Strip& strip = *witness.strip;
    const cv::Rect shown = strip.area & area;
    for (int row = shown.y; row < shown.y + shown.height; ++row) {
      ReadPixelValues(strip.pixels.ptr(row - strip.area.y, shown.x - strip.area.x),
                      static_cast<size_t>(shown.width), strip.pixels.elemSize(),
                      &witness.values[IndexOf({shown.x - area.x, row - area.y})]);
    }
  }

  static size_t IndexOf(const cv::Point& inCell) {
    return static_cast<size_t>(inCell.y) * CellSize + static_cast<size_t>(inCell.x);
  }

  static PixelSet PixelsOf(const cv::Rect& part) {
    PixelSet pixels = 0;
    for (int row = part.y; row < part.y + part.height; ++row) {
      pixels |= (SetOf(static_cast<size_t>(part.width)) - 1) << IndexOf({part.x, row});
    }
    return pixels;
  }

  /// @param part in pixels of the cell
  void DecidePart(const cv::Rect& part) {
    CollectVotes(area.tl() + part.tl());
    if (votes.empty()) {
      return;
    }
    for (const Vote& vote : uncovered) {
      Testimony& testimony = decision.testimonies[vote.witness];
      testimony.shown += part.area();
      testimony.suspicion += vote.suspicion * static_cast<float>(part.area());
    }
    const PixelSet pixels = PixelsOf(part);
    const PixelSet undisputed = pixels & Undisputed();
    for (const Vote& vote : votes) {
      witnesses[vote.witness].right |= undisputed;
    }
    const PixelSet disputed = pixels & ~undisputed;
    if (uncovered.empty()) {
      TakeCovered(disputed);
    } else if (uncovered.size() == 1) {
      witnesses[uncovered.front().witness].right |= disputed;
    } else {
      ForEachPixel(disputed, [&](size_t pixel) { Accept(pixel, Majority(pixel)); });
    }
  }

  void CollectVotes(const cv::Point& place) {
    votes.clear();
    uncovered.clear();
    for (size_t i = 0; i < witnesses.size(); ++i) {
      const Strip& strip = *witnesses[i].strip;
      if (strip.area.contains(place)) {
        const cv::Point inWindow = place - layout.CornerOf(strip.capture);
        votes.push_back({i, suspicion.Of(strip.capture, inWindow), inWindow});
      }
    }
    std::copy_if(votes.begin(), votes.end(), std::back_inserter(uncovered),
                 [](const Vote& vote) { return vote.suspicion < SurelyCovered; });
  }

  /// Where all captures show the same.
  PixelSet Undisputed() const {
    PixelSet undisputed = ~PixelSet{0};
    const CellValues& first = witnesses[votes.front().witness].values;
    for (size_t i = 1; i < votes.size(); ++i) {
      undisputed &= EqualPixels(first, witnesses[votes[i].witness].values);
    }
    return undisputed;
  }

  /// How much a vote counts: the less, the more its capture is suspected to be covered.
  static float WeightOf(float suspicion) {
    return std::clamp((SurelyCovered - suspicion) / (SurelyCovered - HardlySuspect), 0.0F, 1.0F);
  }

  std::uint32_t ValueAt(size_t pixel, const Vote& vote) const {
    return witnesses[vote.witness].values[pixel];
  }

  void Accept(size_t pixel, std::uint32_t value) {
    for (const Vote& vote : uncovered) {
      witnesses[vote.witness].right |= ValueAt(pixel, vote) == value ? SetOf(pixel) : 0;
    }
  }

  /// The most frequent value; of equally frequent ones a clearly less suspect one, or the latest.
  std::uint32_t Majority(size_t pixel) {
    CountValues(pixel);
    if (values.size() == 1) {
      return values.front().value;
    }
    Value best = values.front();
    bool isTie = false;
    for (size_t i = 1; i < values.size(); ++i) {
      const Value& value = values[i];
      const bool isEqual = std::abs(value.weight - best.weight) < ClearlyMore;
      isTie = isEqual || (isTie && value.weight < best.weight);
      if (isEqual ? value.leastSuspicion < best.leastSuspicion - ClearlyLess
                  : value.weight > best.weight) {
        best = value;
      }
    }
    const bool isOpen = std::count_if(values.begin(), values.end(), [](const Value& value) {
                          return value.weight > ClearlyMore;
                        }) > 1;
    decision.open += isOpen ? 1 : 0;
    decision.contested += isOpen && isTie ? 1 : 0;
    for (const Vote& vote : uncovered) {
      decision.testimonies[vote.witness].support += FindValue(ValueAt(pixel, vote))->weight;
    }
    return best.value;
  }

  std::vector<Value>::iterator FindValue(std::uint32_t wanted) {
    return std::find_if(values.begin(), values.end(),
                        [&](const Value& value) { return value.value == wanted; });
  }

  /// Finds the values of a pixel, those that the latest captures show first.
  void CountValues(size_t pixel) {
    values.clear();
    for (auto vote = uncovered.rbegin(); vote != uncovered.rend(); ++vote) {
      auto value = FindValue(ValueAt(pixel, *vote));
      if (value == values.end()) {
        value = values.insert(value, {ValueAt(pixel, *vote)});
      }
      value->weight += WeightOf(vote->suspicion);
      value->leastSuspicion = std::min(value->leastSuspicion, vote->suspicion);
    }
  }

  /// Settles pixels that all captures show covered. Where each shows something that belongs
  /// elsewhere, a panel's background between the letters is better than what lies on it.
  void TakeCovered(PixelSet pixels) {
    const Vote& best = BestCovered();
    if (RankOf(best) == BelongsElsewhere) {
      pixels = TakeBackgrounds(pixels);
    }
    witnesses[best.witness].right |= pixels;
  }

  /// Takes pixels that show the background of a panel.
  /// @return the others
  PixelSet TakeBackgrounds(PixelSet pixels) {
    for (const Vote& vote : votes) {
      Witness& witness = witnesses[vote.witness];
      if (suspicion.IsOnPanel(witness.strip->capture, vote.place)) {
        const auto background =
            PrevailingValue(witness.values.data(), witness.values.data() + CellPixels);
        ForEachPixel(pixels, [&](size_t pixel) {
          if (witness.values[pixel] == background) {
            witness.right |= SetOf(pixel);
            pixels &= ~SetOf(pixel);
          }
        });
      }
    }
    return pixels;
  }

  /// Of captures that all are covered, the one whose fixed parts belong here; else one that shows
  /// plain background; else the one nearest to where they belong.
  const Vote& BestCovered() const {
    return *std::min_element(votes.begin(), votes.end(), [&](const Vote& left, const Vote& right) {
      const CoveredRank leftRank = RankOf(left);
      const CoveredRank rightRank = RankOf(right);
      return leftRank != rightRank ? leftRank < rightRank : Distance(left) < Distance(right);
    });
  }

  int FeaturesOf(const Vote& vote) const {
    return suspicion.FeaturesOf(witnesses[vote.witness].strip->capture, vote.place);
  }

  CoveredRank RankOf(const Vote& vote) const {
    if (Distance(vote) == 0) {
      return BelongsHere;
    }
    return (FeaturesOf(vote) & Featured) == 0 ? IsPlain : BelongsElsewhere;
  }

  /// How far the capture lies from the one in which its fixed parts belong: the first or the last
  /// one, by the place along each axis.
  std::int64_t Distance(const Vote& vote) const {
    const cv::Point corner = layout.CornerOf(witnesses[vote.witness].strip->capture);
    const cv::Size reach = layout.PictureSize() - layout.CaptureSize();
    const int features = FeaturesOf(vote);
    const int row = (features & BelongsLow) != 0 ? reach.height : 0;
    const int column = (features & BelongsRight) != 0 ? reach.width : 0;
    return std::abs(std::int64_t{corner.y} - row) + std::abs(std::int64_t{corner.x} - column);
  }

  /// Takes as many pixels as possible from one capture, as many of the rest from another one, and
  /// so on; of equally good captures the first.
  void AssignOwners() {
    PixelSet assigned = 0;
    for (;;) {
      const Witness* best = nullptr;
      size_t mostPixels = 0;
      for (const Witness& witness : witnesses) {
        const size_t pixels = CountPixels(witness.right & ~assigned);
        if (pixels > mostPixels) {
          mostPixels = pixels;
          best = &witness;
        }
      }
      if (best == nullptr) {
        return;
      }
      ForEachPixel(best->right & ~assigned,
                   [&](size_t pixel) { decision.owners.owners[pixel] = best->strip->capture; });
      assigned |= best->right;
    }
  }

  const CaptureLayout& layout;
  const Suspicion& suspicion;
  const cv::Rect area;
  std::vector<Witness> witnesses;
  Cuts rowCuts, columnCuts;
  std::vector<Vote> votes;      ///< on the part at work
  std::vector<Vote> uncovered;  ///< those of captures that may show it uncovered
  std::vector<Value> values;    ///< of the pixel at work
  CellDecision decision;
};

}  // namespace

CellDecision DecideCell(const CaptureLayout& layout, const Suspicion& suspicion,
                        const cv::Rect& area, const std::vector<Strip>& strips) {
  return CellJudge(layout, suspicion, area, strips).Decide();
}

}  // namespace ScrollingCapture
