#include <algorithm>
#include <cstdlib>
#include <utility>

#include <opencv2/imgproc.hpp>

#include <VelScrollingCapture/mosaic/internal/Blame.h>
#include <VelScrollingCapture/mosaic/internal/FixedFeatures.h>
#include <VelScrollingCapture/mosaic/internal/PairEvidence.h>
#include <VelScrollingCapture/mosaic/internal/ParallelFor.h>
#include <VelScrollingCapture/mosaic/internal/PixelComparison.h>
#include <VelScrollingCapture/mosaic/internal/PixelKinds.h>
#include <VelScrollingCapture/mosaic/internal/Suspicion.h>

namespace ScrollingCapture {
namespace {

/// Captures are judged in stretches, so that the evidence does not grow with their number: so many
/// at a time, in the light of so many before and after them.
constexpr size_t StretchLength = 16;
constexpr size_t StretchMargin = 8;

/// Of how many captures of a stretch the pixels' kinds are looked at together; a byte a pixel each.
constexpr size_t GroupLength = 4;

/// Cells of which this share stands still are taken to stand still, in eighths.
constexpr int StandingEighths = 7;

/// From this suspicion on a cell counts as covered when its features are looked for.
constexpr double Covered = 0.5;

/// How suspect the neighbours of a covered cell are at least, next to it and one further away: what
/// covers content may cast a shadow.
constexpr double NextToCovered = 0.49;
constexpr double NearCovered = 0.4;

struct Stretch {
  size_t begin;
  size_t end;

  size_t Count() const { return end - begin; }
};

/// The later captures to compare one with: the nearest ones, and some that lie further away, where
/// small steps would show a toolbar on itself.
std::vector<size_t> LaterPartners(const CaptureLayout& layout, size_t capture, size_t end) {
  std::vector<std::pair<int, size_t>> partners;
  for (const size_t other : layout.CapturesIn(layout.RectOf(capture))) {
    const cv::Point distance = layout.CornerOf(other) - layout.CornerOf(capture);
    if (other > capture && other < end && distance != cv::Point()) {
      partners.emplace_back(std::abs(distance.x) + std::abs(distance.y), other);
    }
  }
  std::sort(partners.begin(), partners.end());
  std::vector<size_t> chosen;
  for (size_t i = 0; i < partners.size(); i = i < 3 ? i + 1 : i * 3 / 2) {
    chosen.push_back(partners[i].second);
  }
  return chosen;
}

/// Which cells show the same in both captures.
cv::Mat StandingCells(const cv::Mat& first, const cv::Mat& second) {
  const cv::Size cells = CellsOver(first.size());
  cv::Mat different = cv::Mat::zeros(cells, CV_8U);
  std::vector<std::uint8_t> differs(static_cast<size_t>(first.cols));
  for (int row = 0; row < first.rows; ++row) {
    if (!MarkDifferences(first.ptr(row), second.ptr(row), differs.size(), first.elemSize(),
                         differs.data())) {
      continue;
    }
    std::uint8_t* const counts = different.ptr(row / CellSize);
    for (size_t column = 0; column < differs.size(); ++column) {
      counts[column / CellSize] =
          static_cast<std::uint8_t>(counts[column / CellSize] + differs[column]);
    }
  }
  constexpr int MostDifferent = CellSize * CellSize * (8 - StandingEighths) / 8;
  return different <= MostDifferent;
}

class StretchSearch {
 public:
  StretchSearch(const CaptureSource& source, const CaptureLayout& layout, const Stretch& stretch,
                unsigned threadCount)
      : source(source), layout(layout), stretch(stretch), threadCount(threadCount) {}

  std::vector<cv::Mat> Find() {
    kinds.resize(stretch.Count());
    evidence.standsWithNext.resize(stretch.Count());
    for (size_t i = 0; i < stretch.Count(); ++i) {
      for (const size_t partner : LaterPartners(layout, stretch.begin + i, stretch.end)) {
        evidence.pairs.push_back({i, partner - stretch.begin});
      }
    }
    evidence.found.resize(evidence.pairs.size());
    for (size_t begin = 0; begin < stretch.Count(); begin += GroupLength) {
      CompareGroup(begin, std::min(begin + GroupLength, stretch.Count()));
    }
    return FindBlame(evidence, CellsOver(layout.CaptureSize()), threadCount);
  }

 private:
  /// Compares some captures with their later partners. Later groups need these no more.
  void CompareGroup(size_t begin, size_t end) {
    const auto firstPair = FirstPairFrom(begin);
    const auto lastPair = FirstPairFrom(end);
    size_t needed = end;
    for (auto pair = firstPair; pair != lastPair; ++pair) {
      needed = std::max(needed, pair->second + 1);
    }
    if (needed > lookedAt) {
      ParallelFor(needed - lookedAt, threadCount, [&](size_t i) { LookAt(lookedAt + i); });
      lookedAt = needed;
    }
    const auto first = static_cast<size_t>(firstPair - evidence.pairs.begin());
    ParallelFor(static_cast<size_t>(lastPair - firstPair), threadCount,
                [&](size_t i) { Compare(first + i); });
    std::fill(kinds.begin() + static_cast<std::ptrdiff_t>(begin),
              kinds.begin() + static_cast<std::ptrdiff_t>(end), cv::Mat());
  }

  std::vector<CapturePair>::const_iterator FirstPairFrom(size_t capture) const {
    return std::lower_bound(
        evidence.pairs.begin(), evidence.pairs.end(), capture,
        [](const CapturePair& pair, size_t wanted) { return pair.first < wanted; });
  }

  void LookAt(size_t i) {
    const size_t capture = stretch.begin + i;
    kinds[i] = FindPixelKinds(source, layout, capture);
    evidence.standsWithNext[i] = i + 1 < stretch.Count()
                                     ? StandingCells(*source.Get(capture), *source.Get(capture + 1))
                                     : cv::Mat::zeros(CellsOver(layout.CaptureSize()), CV_8U);
  }

  void Compare(size_t i) {
    const CapturePair& pair = evidence.pairs[i];
    evidence.found[i] =
        GatherEvidence(source, layout, {stretch.begin + pair.first, stretch.begin + pair.second},
                       kinds[pair.first], kinds[pair.second]);
  }

  const CaptureSource& source;
  const CaptureLayout& layout;
  const Stretch stretch;
  const unsigned threadCount;
  std::vector<cv::Mat> kinds;  ///< of the captures at work; empty for others
  size_t lookedAt = 0;         ///< captures whose kinds have been found
  SequenceEvidence evidence;
};

/// Makes what lies near covered cells suspect.
void SuspectShadows(cv::Mat& suspicion) {
  cv::Mat next;
  cv::Mat near;
  cv::dilate(suspicion, next, cv::Mat::ones(3, 3, CV_8U));
  cv::dilate(suspicion, near, cv::Mat::ones(5, 5, CV_8U));
  next *= NextToCovered;
  near *= NearCovered;
  cv::max(suspicion, next, suspicion);
  cv::max(suspicion, near, suspicion);
}

bool AnyOf(const std::vector<bool>& flags, size_t begin, size_t end) {
  const auto first = flags.begin() + static_cast<std::ptrdiff_t>(begin);
  const auto last = flags.begin() + static_cast<std::ptrdiff_t>(end);
  return std::find(first, last, true) != last;
}

}  // namespace

Suspicion::Suspicion(const CaptureSource& source, const CaptureLayout& layout,
                     const std::vector<bool>& isDisputed, unsigned threadCount,
                     const AnalysisProgress& progress)
    : maps(layout.Count()) {
  for (size_t begin = 0; begin < maps.size(); begin += StretchLength) {
    progress.Report(static_cast<double>(begin) / static_cast<double>(maps.size()));
    const size_t end = std::min(begin + StretchLength, maps.size());
    if (!AnyOf(isDisputed, begin, end)) {
      continue;
    }
    const Stretch stretch = {begin - std::min(begin, StretchMargin),
                             std::min(end + StretchMargin, maps.size())};
    const auto found = StretchSearch(source, layout, stretch, threadCount).Find();
    ParallelFor(end - begin, threadCount, [&](size_t i) {
      maps[begin + i] = Pack(*source.Get(begin + i), found[begin + i - stretch.begin], layout);
    });
  }
}

cv::Mat Suspicion::Pack(const cv::Mat& pixels, const cv::Mat& suspicion,
                        const CaptureLayout& layout) const {
  const cv::Size reach = layout.PictureSize() - layout.CaptureSize();
  const cv::Mat features =
      FindFixedFeatures(pixels, suspicion >= Covered, reach.height > 0, reach.width > 0);
  cv::Mat shadowed = suspicion.clone();
  SuspectShadows(shadowed);
  cv::Mat packed;
  shadowed.convertTo(packed, CV_8U, MostSuspect);
  packed *= 1 << FeatureBitCount;
  packed += features;
  return packed;
}

}  // namespace ScrollingCapture
