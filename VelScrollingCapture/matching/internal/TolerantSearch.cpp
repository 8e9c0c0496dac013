#include <algorithm>
#include <cstdlib>
#include <utility>

#include <VelScrollingCapture/matching/internal/Comparison.h>
#include <VelScrollingCapture/matching/internal/CorrelationCandidates.h>
#include <VelScrollingCapture/matching/internal/Periods.h>
#include <VelScrollingCapture/matching/internal/TolerantSearch.h>
#include <VelScrollingCapture/matching/internal/Votes.h>

namespace ScrollingCapture {
namespace {

/// So many repetitions are tried to either side.
constexpr int MostRepetitions = 40;

/// Motions this close are the same but for noise.
constexpr int SameMotion = 2;

bool AreClose(const cv::Point& one, const cv::Point& other) {
  return std::max(std::abs(one.x - other.x), std::abs(one.y - other.y)) <= SameMotion;
}

bool Surpasses(const TolerantFinding& one, const TolerantFinding& other) {
  if (AreClose(one.motion, other.motion)) {
    return one.explained > other.explained;
  }
  return one.Outclasses(other) || TolerantProof::Beats(one, other);
}

}  // namespace

TolerantSearch::TolerantSearch(const cv::Mat& earlier, const cv::Mat& later,
                               ScrollOrientation orientation,
                               std::function<bool(const cv::Point&)> isSupported)
    : earlier(earlier),
      later(later),
      orientation(orientation),
      isSupported(std::move(isSupported)),
      proof(earlier, later) {}

std::optional<FoundMotion> TolerantSearch::Run(const std::vector<cv::Point>& proposed) {
  for (const cv::Point& motion : CorrelationCandidates(earlier, later, orientation)) {
    Try(motion);
  }
  for (const cv::Point& motion : proposed) {
    Try(motion);
  }
  if (plausible.empty()) {
    return std::nullopt;
  }
  TryPeriods();
  TryNeighbours();
  const TolerantFinding& best = Best();
  FoundMotion found{best.motion, {}, best.IsExact(), best.IsTelling()};
  for (const TolerantFinding& rival : plausible) {
    if (!AreClose(rival.motion, best.motion) && !IsMotionOfPart(rival.motion, best.motion) &&
        !Surpasses(best, rival)) {
      found.rivals.push_back(rival.motion);
    }
  }
  return found;
}

/// Where content repeats itself within a capture, the next repetitions are rivals.
void TolerantSearch::TryPeriods() {
  const cv::Point motion = Best().motion;
  for (const cv::Point& period : PeriodsOf(later)) {
    if (!IsAllowed(period, orientation)) {
      continue;
    }
    for (const cv::Point& step : {period, -period}) {
      cv::Point repeated = motion + step;
      for (int i = 0; i < MostRepetitions && !OverlapOf(later.size(), repeated).empty(); ++i) {
        Try(repeated);
        repeated += step;
      }
    }
  }
}

void TolerantSearch::TryNeighbours() {
  for (const cv::Point& neighbour : NeighboursOf(Best().motion, orientation)) {
    Try(neighbour);
  }
}

void TolerantSearch::Try(const cv::Point& motion) {
  const bool isKnown = std::any_of(plausible.begin(), plausible.end(),
                                   [&](const auto& known) { return known.motion == motion; });
  if (!isKnown) {
    TolerantFinding finding = proof.Examine(motion);
    if (finding.IsPlausible(isSupported(motion))) {
      plausible.push_back(std::move(finding));
    }
  }
}

/// The one that surpasses most of the others, and of equal ones that which explains most.
const TolerantFinding& TolerantSearch::Best() const {
  const auto rank = [this](const TolerantFinding& one) {
    const auto wins = std::count_if(plausible.begin(), plausible.end(),
                                    [&](const auto& other) { return Surpasses(one, other); });
    return std::pair(wins, one.explained);
  };
  return *std::max_element(
      plausible.begin(), plausible.end(),
      [&](const auto& left, const auto& right) { return rank(left) < rank(right); });
}

}  // namespace ScrollingCapture
