#include <algorithm>
#include <cstddef>
#include <cstdlib>

#include <VelScrollingCapture/mosaic/internal/CellDecision.h>
#include <VelScrollingCapture/mosaic/internal/FixedFeatures.h>
#include <VelScrollingCapture/mosaic/internal/PixelComparison.h>

namespace ScrollingCapture {
namespace {

/// Values whose votes weigh as much as each other, within this, are equally frequent. Of them a
/// less suspect one wins, if it is so by this.
constexpr float ClearlyMore = 0.25F;
constexpr float ClearlyLess = 0.1F;

/// What one capture shows of a pixel.
struct Vote {
  size_t witness;  ///< index of the strip among those that show some of the cell
  std::uint32_t value;
  float suspicion;
  cv::Point place;  ///< in the window
};

/// One of the values that uncovered captures show.
struct Value {
  std::uint32_t value;
  float weight = 0;
  float leastSuspicion = 1;
};

class CellJudge {
 public:
  CellJudge(const CaptureLayout& layout, const Suspicion& suspicion, const cv::Rect& area,
            const std::vector<Strip>& strips)
      : layout(layout), suspicion(suspicion), area(area) {
    decision.owners.cell = {area.x / CellSize, area.y / CellSize};
    for (const Strip& strip : strips) {
      if (!(strip.area & area).empty()) {
        witnesses.push_back(&strip);
        decision.testimonies.emplace_back();
        decision.testimonies.back().capture = strip.capture;
      }
    }
    const size_t pixels = static_cast<size_t>(area.area());
    isRight.assign(witnesses.size(), std::vector<bool>(pixels));
  }

  CellDecision Decide() {
    for (int pixel = 0; pixel < area.area(); ++pixel) {
      DecidePixel(static_cast<size_t>(pixel),
                  area.tl() + cv::Point(pixel % area.width, pixel / area.width));
    }
    AssignOwners();
    return std::move(decision);
  }

 private:
  void DecidePixel(size_t pixel, const cv::Point& place) {
    CollectVotes(place);
    if (votes.empty()) {
      return;
    }
    const std::vector<Vote> uncovered = Uncovered();
    for (const Vote& vote : uncovered) {
      Testimony& testimony = decision.testimonies[vote.witness];
      ++testimony.shown;
      testimony.suspicion += vote.suspicion;
    }
    if (AllEqual(votes)) {
      Accept(pixel, votes, votes.front().value);
    } else if (uncovered.empty()) {
      isRight[BestCovered().witness][pixel] = true;
    } else {
      Accept(pixel, uncovered, Majority(uncovered));
    }
  }

  void CollectVotes(const cv::Point& place) {
    votes.clear();
    for (size_t i = 0; i < witnesses.size(); ++i) {
      const Strip& strip = *witnesses[i];
      if (strip.area.contains(place)) {
        const cv::Point inStrip = place - strip.area.tl();
        const cv::Point inWindow = place - layout.CornerOf(strip.capture);
        const std::uint8_t* const bytes = strip.pixels.ptr(inStrip.y, inStrip.x);
        votes.push_back({i, PixelValue(bytes, strip.pixels.elemSize()),
                         suspicion.Of(strip.capture, inWindow), inWindow});
      }
    }
  }

  /// The votes of captures that may show the pixel uncovered.
  std::vector<Vote> Uncovered() const {
    std::vector<Vote> uncovered;
    std::copy_if(votes.begin(), votes.end(), std::back_inserter(uncovered),
                 [](const Vote& vote) { return vote.suspicion < SurelyCovered; });
    return uncovered;
  }

  /// How much a vote counts: the less, the more its capture is suspected to be covered.
  static float WeightOf(float suspicion) {
    return std::clamp((SurelyCovered - suspicion) / (SurelyCovered - HardlySuspect), 0.0F, 1.0F);
  }

  static bool AllEqual(const std::vector<Vote>& votes) {
    return std::all_of(votes.begin(), votes.end(),
                       [&](const Vote& vote) { return vote.value == votes.front().value; });
  }

  void Accept(size_t pixel, const std::vector<Vote>& accepted, std::uint32_t value) {
    for (const Vote& vote : accepted) {
      isRight[vote.witness][pixel] = vote.value == value;
    }
  }

  /// The most frequent value; of equally frequent ones a clearly less suspect one, or the latest.
  std::uint32_t Majority(const std::vector<Vote>& uncovered) {
    const std::vector<Value> values = CountValues(uncovered);
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
      decision.testimonies[vote.witness].support +=
          std::find_if(values.begin(), values.end(), [&](const Value& value) {
            return value.value == vote.value;
          })->weight;
    }
    return best.value;
  }

  /// The values, those that the latest captures show first.
  static std::vector<Value> CountValues(const std::vector<Vote>& votes) {
    std::vector<Value> values;
    for (auto vote = votes.rbegin(); vote != votes.rend(); ++vote) {
      auto value = std::find_if(values.begin(), values.end(),
                                [&](const Value& seen) { return seen.value == vote->value; });
      if (value == values.end()) {
        values.push_back({vote->value});
        value = values.end() - 1;
      }
      value->weight += WeightOf(vote->suspicion);
      value->leastSuspicion = std::min(value->leastSuspicion, vote->suspicion);
    }
    return values;
  }

  /// Of captures that all are covered, the one whose fixed parts belong here; else one that shows
  /// plain background; else the one nearest to where they belong.
  const Vote& BestCovered() const {
    return *std::min_element(votes.begin(), votes.end(), [&](const Vote& left, const Vote& right) {
      const int leftRank = RankOf(left);
      const int rightRank = RankOf(right);
      return leftRank != rightRank ? leftRank < rightRank : Distance(left) < Distance(right);
    });
  }

  int FeaturesOf(const Vote& vote) const {
    return suspicion.FeaturesOf(witnesses[vote.witness]->capture, vote.place);
  }

  int RankOf(const Vote& vote) const {
    if (Distance(vote) == 0) {
      return 0;
    }
    return (FeaturesOf(vote) & Featured) == 0 ? 1 : 2;
  }

  /// How far the capture lies from the one in which its fixed parts belong: the first or the last
  /// one, by the place along each axis.
  std::int64_t Distance(const Vote& vote) const {
    const cv::Point corner = layout.CornerOf(witnesses[vote.witness]->capture);
    const cv::Size reach = layout.PictureSize() - layout.CaptureSize();
    const int features = FeaturesOf(vote);
    const int row = (features & BelongsLow) != 0 ? reach.height : 0;
    const int column = (features & BelongsRight) != 0 ? reach.width : 0;
    return std::abs(std::int64_t{corner.y} - row) + std::abs(std::int64_t{corner.x} - column);
  }

  /// Takes as many pixels as possible from one capture, as many of the rest from another one, and
  /// so on; of equally good captures the first.
  void AssignOwners() {
    std::vector<bool> isAssigned(static_cast<size_t>(area.area()));
    for (;;) {
      size_t best = 0;
      int mostPixels = 0;
      for (size_t i = 0; i < witnesses.size(); ++i) {
        const int pixels = CountRight(i, isAssigned);
        if (pixels > mostPixels) {
          mostPixels = pixels;
          best = i;
        }
      }
      if (mostPixels == 0) {
        return;
      }
      Assign(best, isAssigned);
    }
  }

  int CountRight(size_t witness, const std::vector<bool>& isAssigned) const {
    int count = 0;
    for (size_t pixel = 0; pixel < isAssigned.size(); ++pixel) {
      count += isRight[witness][pixel] && !isAssigned[pixel] ? 1 : 0;
    }
    return count;
  }

  void Assign(size_t witness, std::vector<bool>& isAssigned) {
    for (int pixel = 0; pixel < area.area(); ++pixel) {
      const auto index = static_cast<size_t>(pixel);
      if (isRight[witness][index] && !isAssigned[index]) {
        isAssigned[index] = true;
        decision.owners.At(pixel / area.width, pixel % area.width) = witnesses[witness]->capture;
      }
    }
  }

  const CaptureLayout& layout;
  const Suspicion& suspicion;
  const cv::Rect area;
  std::vector<const Strip*> witnesses;
  std::vector<std::vector<bool>> isRight;  ///< by witness and pixel
  std::vector<Vote> votes;
  CellDecision decision;
};

}  // namespace

CellDecision DecideCell(const CaptureLayout& layout, const Suspicion& suspicion,
                        const cv::Rect& area, const std::vector<Strip>& strips) {
  return CellJudge(layout, suspicion, area, strips).Decide();
}

}  // namespace ScrollingCapture
