#include <algorithm>
#include <cstdlib>
#include <optional>
#include <stdexcept>
#include <utility>

#include <opencv2/imgproc.hpp>

#include <VelScrollingCapture/matching/internal/CorrelationCandidates.h>
#include <VelScrollingCapture/matching/internal/PairStudy.h>
#include <VelScrollingCapture/matching/internal/PixelKeys.h>
#include <VelScrollingCapture/matching/internal/SeenAnchors.h>
#include <VelScrollingCapture/matching/internal/TolerantProof.h>

namespace ScrollingCapture {
namespace {

/// Of the motions with votes, so many of the first are tried.
constexpr std::size_t MostCandidates = 8;
constexpr std::size_t MostRepeatedCandidates = 32;

/// Fewer votes can not reach the cells that a motion needs.
constexpr int LeastVotes = 8;

/// So many votes are no accident, even where many anchors vote otherwise.
constexpr int ManyVotes = 48;

/// Anchors that stand still may outnumber those of the content so many times.
constexpr int MostStanding = 16;

/// A motion is dominant with so many times the votes of the next.
constexpr int Dominance = 8;

constexpr int StrongEvidence = 24;

constexpr std::size_t MostEvidence = 32;

bool AreNeighbours(const cv::Point& one, const cv::Point& other) {
  return std::abs(one.x - other.x) <= 1 && std::abs(one.y - other.y) <= 1;
}

/// A motion that parts of a window may have beside the content's: none, or along one axis only.
bool IsPartOf(const cv::Point& part, const cv::Point& motion) {
  return part == cv::Point(0, 0) || part == cv::Point(motion.x, 0) ||
         part == cv::Point(0, motion.y);
}

cv::Mat GreyOf(const cv::Mat& capture) {
  cv::Mat grey;
  if (capture.channels() == 1) {
    return capture;
  }
  cv::cvtColor(capture, grey, capture.channels() == 4 ? cv::COLOR_RGBA2GRAY : cv::COLOR_RGB2GRAY);
  return grey;
}

class PairStudyRun {
 public:
  PairStudyRun(const AnchoredCapture& earlier, const AnchoredCapture& later,
               const MatchingSettings& settings)
      : earlier(earlier),
        later(later),
        settings(settings),
        earlierKeys(PixelKeysOf(earlier.pixels)),
        laterKeys(PixelKeysOf(later.pixels)),
        matches(UniqueMatches(earlier.anchors, later.anchors, settings.orientation)),
        counted(CountMotions(matches)),
        proof(earlierKeys, laterKeys, matches) {}

  /// What the pixels say about a motion that somebody prescribes.
  PairMatch RunFor(const cv::Point& motion) {
    PairMatch found = Run();
    Join& join = found.join;
    const Translation prescribed = ToTranslation(motion);
    if (join.motion == prescribed && join.verdict != Verdict::None) {
      return found;
    }
    const auto same = std::find(join.alternatives.begin(), join.alternatives.end(), prescribed);
    if (same != join.alternatives.end()) {
      *same = join.motion;
    } else if (IsPlausible(proof.Examine(motion))) {
      join.alternatives.assign(join.verdict == Verdict::None ? 0 : 1, join.motion);
      join.verdict = join.alternatives.empty() ? Verdict::Likely : Verdict::Doubtful;
    } else {
      join.alternatives.clear();
      join.verdict = Verdict::None;
    }
    join.motion = prescribed;
    Measure(motion, join);
    found.evidence.clear();
    return found;
  }

  PairMatch Run() {
    if (std::optional<PairMatch> exact = ByUniqueAnchors()) {
      return *std::move(exact);
    }
    if (std::optional<PairMatch> repeated = ByRepeatedAnchors()) {
      return *std::move(repeated);
    }
    return ByCorrelation();
  }

 private:
  PairMatch ByCorrelation() {
    const cv::Mat earlierGrey = GreyOf(earlier.pixels);
    const cv::Mat laterGrey = GreyOf(later.pixels);
    const TolerantProof tolerant(earlierGrey, laterGrey);
    std::vector<TolerantFinding> plausible;
    for (const cv::Point& motion : TolerantCandidates(earlierGrey, laterGrey)) {
      AddPlausible(tolerant, motion, plausible);
    }
    if (plausible.empty()) {
      return {};
    }
    AddPeriods(tolerant, laterGrey, plausible);
    const std::size_t best = BestOf(plausible);
    PairMatch match;
    match.join.verdict = Verdict::Likely;
    match.join.motion = ToTranslation(plausible[best].motion);
    for (const TolerantFinding& rival : plausible) {
      if (!IsExcused(rival.motion, plausible[best].motion) && !plausible[best].Outclasses(rival) &&
          !TolerantProof::Beats(plausible[best], rival)) {
        match.join.verdict = Verdict::Doubtful;
        match.join.alternatives.push_back(ToTranslation(rival.motion));
      }
    }
    Measure(plausible[best].motion, match.join);
    return match;
  }

  void AddPlausible(const TolerantProof& tolerant, const cv::Point& motion,
                    std::vector<TolerantFinding>& plausible) const {
    const bool isKnown = std::any_of(plausible.begin(), plausible.end(),
                                     [&](const auto& known) { return known.motion == motion; });
    if (!isKnown) {
      TolerantFinding finding = tolerant.Examine(motion);
      if (finding.IsPlausible(IsSupported(motion))) {
        plausible.push_back(std::move(finding));
      }
    }
  }

  /// Where content repeats itself within a capture, the next repetitions are tried as well.
  void AddPeriods(const TolerantProof& tolerant, const cv::Mat& laterGrey,
                  std::vector<TolerantFinding>& plausible) const {
    const cv::Point motion = plausible[BestOf(plausible)].motion;
    for (const cv::Point& period :
         CorrelationCandidates(laterGrey, laterGrey, settings.orientation)) {
      AddPlausible(tolerant, motion + period, plausible);
    }
  }

  /// The finding that beats most of the others, and of equal ones that which explains most.
  static std::size_t BestOf(const std::vector<TolerantFinding>& findings) {
    const auto wins = [&](const TolerantFinding& one) {
      return std::count_if(findings.begin(), findings.end(), [&](const TolerantFinding& other) {
        return AreClose(one.motion, other.motion) ? one.explained > other.explained
                                                  : TolerantProof::Beats(one, other);
      });
    };
    const auto best = std::max_element(
        findings.begin(), findings.end(), [&](const auto& left, const auto& right) {
          return std::pair(wins(left), left.explained) < std::pair(wins(right), right.explained);
        });
    return static_cast<std::size_t>(best - findings.begin());
  }

  static bool AreClose(const cv::Point& one, const cv::Point& other) {
    return std::max(std::abs(one.x - other.x), std::abs(one.y - other.y)) <= 2;
  }

  static bool IsExcused(const cv::Point& rival, const cv::Point& motion) {
    return AreClose(rival, motion) || IsPartOf(rival, motion);
  }

  void Measure(const cv::Point& motion, Join& join) const {
    const Comparison comparison = Compare(earlierKeys, laterKeys, motion, Vectors::Widest);
    join.compared = comparison.Compared();
    join.equal = comparison.equal;
  }

  std::vector<cv::Point> TolerantCandidates(const cv::Mat& earlierGrey,
                                            const cv::Mat& laterGrey) const {
    std::vector<cv::Point> candidates =
        CorrelationCandidates(earlierGrey, laterGrey, settings.orientation);
    for (std::size_t i = 0; i < std::min(counted.size(), MostCandidates / 2); ++i) {
      if (std::find(candidates.begin(), candidates.end(), counted[i].motion) == candidates.end()) {
        candidates.push_back(counted[i].motion);
      }
    }
    return candidates;
  }

  std::optional<PairMatch> ByUniqueAnchors() {
    std::vector<CountedMotion> candidates = counted;
    candidates.erase(std::find_if(candidates.begin(), candidates.end(),
                                  [](const auto& counted) { return counted.votes < LeastVotes; }),
                     candidates.end());
    if (candidates.size() > MostCandidates) {
      candidates.resize(MostCandidates);
    }
    if (!candidates.empty() && candidates.front().motion == cv::Point()) {
      const Finding still = proof.Examine({});
      if (still.IsPlausible(false) && still.IsClean()) {
        return Accept(still, {}, false);
      }
    }
    for (const CountedMotion& candidate : candidates) {
      if (candidate.motion != cv::Point()) {
        const Finding finding = proof.Examine(candidate.motion);
        if (IsPlausible(finding)) {
          if (!IsSharp(finding)) {
            return std::nullopt;
          }
          return Judge(finding, candidates);
        }
      }
    }
    if (proof.StandsStill()) {
      return Accept(proof.Examine({}), {}, false);
    }
    return std::nullopt;
  }

  int VotesFor(const cv::Point& motion) const {
    const auto found = std::find_if(counted.begin(), counted.end(),
                                    [&](const auto& other) { return other.motion == motion; });
    return found == counted.end() ? 0 : found->votes;
  }

  bool IsDominant(const cv::Point& motion) const {
    const auto rival = std::find_if(counted.begin(), counted.end(), [&](const auto& other) {
      return !AreNeighbours(other.motion, motion) && !IsPartOf(other.motion, motion);
    });
    const int votes = VotesFor(motion);
    return votes > 0 && (rival == counted.end() || votes >= Dominance * rival->votes);
  }

  bool IsSupported(const cv::Point& motion) const {
    const int votes = VotesFor(motion);
    return votes >= ManyVotes && 4 * votes >= counted.front().votes;
  }

  bool IsPlausible(const Finding& finding) const {
    return finding.IsPlausible(IsDominant(finding.motion)) &&
           (finding.motion == cv::Point() ||
            VotesFor(finding.motion) * MostStanding >= VotesFor({}));
  }

  /// Whether no neighbour of a motion explains more, noise aside: blocks of lossy files may agree
  /// under a motion close to the right one.
  bool IsSharp(const Finding& finding) const {
    if (finding.tilesUnique >= finding.tilesAgainstUnique) {
      return true;
    }
    const cv::Mat earlierGrey = GreyOf(earlier.pixels);
    const cv::Mat laterGrey = GreyOf(later.pixels);
    const TolerantProof tolerant(earlierGrey, laterGrey);
    const double explained = tolerant.Examine(finding.motion).explained;
    const std::vector<cv::Point> neighbours = NeighboursOf(finding.motion);
    return std::none_of(neighbours.begin(), neighbours.end(), [&](const cv::Point& neighbour) {
      return tolerant.Examine(neighbour).explained > explained;
    });
  }

  std::vector<cv::Point> NeighboursOf(const cv::Point& motion) const {
    std::vector<cv::Point> neighbours;
    for (int y = -1; y <= 1; ++y) {
      for (int x = -1; x <= 1; ++x) {
        const cv::Point neighbour = motion + cv::Point(x, y);
        if (neighbour != motion && IsAllowed(neighbour, settings.orientation)) {
          neighbours.push_back(neighbour);
        }
      }
    }
    return neighbours;
  }

  PairMatch Judge(const Finding& finding, const std::vector<CountedMotion>& candidates) {
    std::vector<cv::Point> rivals;
    bool isDrawnAnew = false;
    for (const CountedMotion& candidate : candidates) {
      const cv::Point& rival = candidate.motion;
      if (rival == finding.motion || IsPartOf(rival, finding.motion) ||
          proof.Beats(finding.motion, rival)) {
        continue;
      }
      if (AreNeighbours(rival, finding.motion)) {
        isDrawnAnew = true;
      } else if (IsPlausible(proof.Examine(rival))) {
        rivals.push_back(rival);
      }
    }
    return Accept(finding, rivals, isDrawnAnew);
  }

  PairMatch Accept(const Finding& finding, const std::vector<cv::Point>& rivals, bool isDrawnAnew) {
    PairMatch match;
    match.join.motion = ToTranslation(finding.motion);
    match.join.compared = finding.comparison.Compared();
    match.join.equal = finding.comparison.equal;
    for (const cv::Point& rival : rivals) {
      match.join.alternatives.push_back(ToTranslation(rival));
    }
    const bool isProven = finding.IsClean() && !isDrawnAnew && finding.unique >= StrongEvidence;
    match.join.verdict = !rivals.empty() ? Verdict::Doubtful
                         : isProven      ? Verdict::Proven
                                         : Verdict::Likely;
    for (const Match& seen : matches) {
      if (seen.motion == finding.motion && match.evidence.size() < MostEvidence &&
          SeenAnchors::IsRemembered(seen.hash, later.anchors)) {
        match.evidence.push_back(seen.hash);
      }
    }
    return match;
  }

  std::vector<cv::Point> PossibleMotions() const {
    std::vector<cv::Point> motions;
    const auto add = [&](const std::vector<CountedMotion>& candidates, std::size_t most) {
      for (std::size_t i = 0; i < std::min(candidates.size(), most); ++i) {
        if (std::find(motions.begin(), motions.end(), candidates[i].motion) == motions.end()) {
          motions.push_back(candidates[i].motion);
        }
      }
    };
    add(counted, MostCandidates);
    add(MotionsOfRepeatedAnchors(earlier.anchors, later.anchors, settings.orientation),
        MostRepeatedCandidates);
    return motions;
  }

  std::optional<PairMatch> ByRepeatedAnchors() {
    std::vector<Finding> survivors;
    for (const cv::Point& candidate : PossibleMotions()) {
      Finding finding = proof.Examine(candidate);
      if (finding.IsPossible()) {
        survivors.push_back(std::move(finding));
      }
    }
    if (survivors.empty()) {
      return std::nullopt;
    }
    if (survivors.size() == 1) {
      for (const cv::Point& neighbour : NeighboursOf(survivors.front().motion)) {
        Finding finding = proof.Examine(neighbour);
        if (finding.IsPossible()) {
          survivors.push_back(std::move(finding));
        }
      }
    }
    std::sort(survivors.begin(), survivors.end(), [](const auto& left, const auto& right) {
      return IsSmaller(left.motion, right.motion);
    });
    PairMatch match;
    match.join.verdict = survivors.size() > 1 ? Verdict::Doubtful : Verdict::Likely;
    match.join.motion = ToTranslation(survivors.front().motion);
    match.join.compared = survivors.front().comparison.Compared();
    match.join.equal = survivors.front().comparison.equal;
    for (std::size_t i = 1; i < survivors.size(); ++i) {
      match.join.alternatives.push_back(ToTranslation(survivors[i].motion));
    }
    return match;
  }

  const AnchoredCapture& earlier;
  const AnchoredCapture& later;
  const MatchingSettings& settings;
  const cv::Mat earlierKeys;
  const cv::Mat laterKeys;
  const std::vector<Match> matches;
  const std::vector<CountedMotion> counted;
  const ExactProof proof;
};

}  // namespace

PairMatch StudyPair(const AnchoredCapture& earlier, const AnchoredCapture& later,
                    const MatchingSettings& settings) {
  return PairStudyRun(earlier, later, settings).Run();
}

PairMatch StudyMotion(const AnchoredCapture& earlier, const AnchoredCapture& later,
                      const cv::Point& motion, const MatchingSettings& settings) {
  return PairStudyRun(earlier, later, settings).RunFor(motion);
}

Join PreferRepetition(Join join, const Translation& stepBefore) {
  const auto repeated = std::find(join.alternatives.begin(), join.alternatives.end(), stepBefore);
  if (join.verdict == Verdict::Doubtful && repeated != join.alternatives.end()) {
    std::swap(join.motion, *repeated);
  }
  return join;
}

void RequireSameFormat(const CaptureAnchors& earlier, const CaptureAnchors& later) {
  if (earlier.size != later.size || earlier.type != later.type) {
    throw std::invalid_argument("Captures that are joined have to be of one size and one type.");
  }
}

}  // namespace ScrollingCapture
