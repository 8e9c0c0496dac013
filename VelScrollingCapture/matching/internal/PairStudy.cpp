#include <algorithm>
#include <cstdlib>
#include <optional>
#include <stdexcept>
#include <utility>

#include <opencv2/imgproc.hpp>

#include <VelScrollingCapture/matching/internal/BlankOverlap.h>
#include <VelScrollingCapture/matching/internal/PairStudy.h>
#include <VelScrollingCapture/matching/internal/Periods.h>
#include <VelScrollingCapture/matching/internal/PixelKeys.h>
#include <VelScrollingCapture/matching/internal/SeenAnchors.h>
#include <VelScrollingCapture/matching/internal/TolerantProof.h>
#include <VelScrollingCapture/matching/internal/TolerantSearch.h>

namespace ScrollingCapture {
namespace {

/// Of the motions with votes, so many of the first are tried.
constexpr std::size_t MostCandidates = 8;
constexpr std::size_t MostRepeatedCandidates = 32;

/// Fewer votes can not reach the cells that a motion needs.
constexpr int LeastVotes = 12;

/// So many votes are no accident, even where many anchors vote otherwise.
constexpr int ManyVotes = 48;

/// Anchors that stand still may outnumber those of the content so many times.
constexpr int MostStanding = 16;

/// A motion is dominant with so many times the votes of the next.
constexpr int Dominance = 8;

/// The unique cells from which on a motion is proven, and those without which a motion that nothing
/// contradicts is not believed.
constexpr int StrongEvidence = 24;
constexpr int LeastWitnesses = 4;

constexpr std::size_t MostEvidence = 32;

/// Lossy files code blocks of so many pixels a side.
constexpr int LossyBlock = 8;

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
        earlierKeys(PixelKeysOf(earlier.pixels, earlier.anchors.arePixelsKeys)),
        laterKeys(PixelKeysOf(later.pixels, later.anchors.arePixelsKeys)),
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
    std::vector<cv::Point> rivals(join.alternatives.size());
    std::transform(join.alternatives.begin(), join.alternatives.end(), rivals.begin(), ToPoint);
    std::sort(rivals.begin(), rivals.end(), IsSmaller);
    SetMotions(motion, rivals, join);
    found.evidence.clear();
    return found;
  }

  PairMatch RunExpecting(const cv::Point& motion) {
    if (std::optional<PairMatch> exact = ByAnchors()) {
      return *std::move(exact);
    }
    const cv::Mat earlierGrey = GreyOf(earlier.pixels);
    const cv::Mat laterGrey = GreyOf(later.pixels);
    const TolerantProof tolerant(earlierGrey, laterGrey);
    return tolerant.Examine(motion).IsPlausible(IsSupported(motion))
               ? ByCorrelation(earlierGrey, laterGrey)
               : PairMatch();
  }

  PairMatch Run() {
    if (std::optional<PairMatch> exact = ByAnchors()) {
      return *std::move(exact);
    }
    PairMatch found = ByCorrelation(GreyOf(earlier.pixels), GreyOf(later.pixels));
    return found.join.verdict == Verdict::None ? ByBlankOverlap() : found;
  }

 private:
  std::optional<PairMatch> ByAnchors() {
    if (std::optional<PairMatch> exact = ByUniqueAnchors()) {
      return exact;
    }
    return ByRepeatedAnchors();
  }

  PairMatch ByBlankOverlap() const {
    const std::vector<cv::Point> motions =
        MotionsOfBlankOverlap(earlierKeys, laterKeys, settings.orientation);
    return motions.empty() ? PairMatch() : InDoubt(motions);
  }

  /// @param motions the smallest first
  PairMatch InDoubt(const std::vector<cv::Point>& motions) const {
    PairMatch match;
    match.join.verdict = Verdict::Doubtful;
    SetMotions(motions.front(), {motions.begin() + 1, motions.end()}, match.join);
    return match;
  }

  PairMatch ByCorrelation(const cv::Mat& earlierGrey, const cv::Mat& laterGrey) const {
    TolerantSearch search(earlierGrey, laterGrey, settings.orientation,
                          [this](const cv::Point& motion) { return IsSupported(motion); });
    std::vector<cv::Point> proposed;
    for (std::size_t i = 0; i < std::min(counted.size(), MostCandidates / 2); ++i) {
      proposed.push_back(counted[i].motion);
    }
    std::optional<FoundMotion> found = search.Run(proposed);
    if (!found) {
      return {};
    }
    if (found->isExact) {
      AddRivalsByPeriod(proof.Examine(found->motion), found->rivals);
    }
    PairMatch match;
    match.join.verdict = found->rivals.empty() ? Verdict::Likely : Verdict::Doubtful;
    SetMotions(found->motion, found->rivals, match.join);
    return match;
  }

  /// Fills in a join under a motion, whose rivals come in any order.
  void SetMotions(const cv::Point& motion, std::vector<cv::Point> rivals, Join& join) const {
    std::sort(rivals.begin(), rivals.end(), IsSmaller);
    rivals.erase(std::unique(rivals.begin(), rivals.end()), rivals.end());
    rivals.resize(std::min(rivals.size(), MostAlternatives));
    const Comparison comparison = Compare(earlierKeys, laterKeys, motion, Vectors::Widest);
    join.motion = ToTranslation(motion);
    join.compared = comparison.Compared();
    join.equal = comparison.equal;
    join.alternatives.clear();
    std::transform(rivals.begin(), rivals.end(), std::back_inserter(join.alternatives),
                   ToTranslation);
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
        return AcceptStill(still);
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
      return AcceptStill(proof.Examine({}));
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
      return !AreNeighbours(other.motion, motion) && !IsMotionOfPart(other.motion, motion);
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
    if (finding.IsWitnessed()) {
      return true;
    }
    const cv::Mat earlierGrey = GreyOf(earlier.pixels);
    const cv::Mat laterGrey = GreyOf(later.pixels);
    const TolerantProof tolerant(earlierGrey, laterGrey);
    const double explained = tolerant.Examine(finding.motion).explained;
    const std::vector<cv::Point> neighbours = NeighboursOf(finding.motion, settings.orientation);
    return std::none_of(neighbours.begin(), neighbours.end(), [&](const cv::Point& neighbour) {
      return tolerant.Examine(neighbour).explained > explained;
    });
  }

  PairMatch Judge(const Finding& finding, const std::vector<CountedMotion>& candidates) {
    std::vector<cv::Point> rivals;
    bool isDrawnAnew = false;
    for (const CountedMotion& candidate : candidates) {
      const cv::Point& rival = candidate.motion;
      if (rival == finding.motion || IsMotionOfPart(rival, finding.motion) ||
          proof.Beats(finding.motion, rival)) {
        continue;
      }
      if (AreNeighbours(rival, finding.motion)) {
        isDrawnAnew = true;
      } else if (IsPlausible(proof.Examine(rival))) {
        rivals.push_back(rival);
      }
    }
    AddRivalsByPeriod(finding, rivals);
    return Accept(finding, rivals, isDrawnAnew);
  }

  /// Bars at the edges stand still in any case: alone they say nothing about the content.
  PairMatch AcceptStill(const Finding& finding) const {
    std::vector<cv::Point> rivals;
    AddRivalsByPeriod(finding, rivals);
    PairMatch match = Accept(finding, rivals, false);
    if (!proof.IsUniqueInside({})) {
      match.join.verdict = Verdict::Doubtful;
    }
    return match;
  }

  /// Where content repeats itself, the next repetitions may explain the captures as well: to the
  /// pixel, or (when lossy files make unlike what was alike) but for noise. And what is no better
  /// than its repetitions although it has to be believed for what is not unique is in doubt: the
  /// digits of numbered rows come again after ten rows, in other numbers.
  void AddRivalsByPeriod(const Finding& found, std::vector<cv::Point>& rivals) const {
    const cv::Point& motion = found.motion;
    if (!MayBePeriodic(motion)) {
      return;
    }
    const StandingParts parts = FindStandingParts(matches, motion, later.pixels.size());
    for (const cv::Point& period : PeriodsOf(later.pixels)) {
      for (const int times : {-2, -1, 1, 2}) {
        const cv::Point rival = motion + times * period;
        if (IsAllowed(rival, settings.orientation) && MayRepeat(found, rival, parts)) {
          rivals.push_back(rival);
        }
      }
    }
  }

  /// Either anchors show that content repeats itself; or the motion is one under which lossy files,
  /// which are made of blocks, may agree to the pixel, and so hide it.
  bool MayBePeriodic(const cv::Point& motion) const {
    if (motion.x % LossyBlock == 0 && motion.y % LossyBlock == 0 && MayBeLossy(later.pixels)) {
      return true;
    }
    const std::vector<Anchor>& anchors = later.anchors.anchors;
    std::size_t repeated = 0;
    for (std::size_t i = 1; i < anchors.size(); ++i) {
      repeated += static_cast<std::size_t>(anchors[i].hash == anchors[i - 1].hash);
    }
    return repeated * 4 > anchors.size();
  }

  bool MayRepeat(const Finding& found, const cv::Point& rival, const StandingParts& parts) const {
    const Finding finding = proof.Examine(rival, parts);
    if (finding.IsPossible() || (!found.IsWitnessed() && found.IsNoBetterThan(finding))) {
      return true;
    }
    if (finding.contradicting <= finding.agreeing || !MayBeLossy(later.pixels)) {
      return false;
    }
    const cv::Mat earlierGrey = GreyOf(earlier.pixels);
    const cv::Mat laterGrey = GreyOf(later.pixels);
    return TolerantProof(earlierGrey, laterGrey).Examine(rival).HardlyContradicts();
  }

  PairMatch Accept(const Finding& finding, const std::vector<cv::Point>& rivals,
                   bool isDrawnAnew) const {
    PairMatch match;
    SetMotions(finding.motion, rivals, match.join);
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
      for (const cv::Point& neighbour :
           NeighboursOf(survivors.front().motion, settings.orientation)) {
        Finding finding = proof.Examine(neighbour);
        if (finding.IsPossible()) {
          survivors.push_back(std::move(finding));
        }
      }
    }
    std::vector<cv::Point> motions(survivors.size());
    std::transform(survivors.begin(), survivors.end(), motions.begin(),
                   [](const Finding& finding) { return finding.motion; });
    std::sort(motions.begin(), motions.end(), IsSmaller);
    PairMatch match = InDoubt(motions);
    if (survivors.size() == 1 && survivors.front().contradicting == 0 &&
        survivors.front().unique >= LeastWitnesses) {
      match.join.verdict = Verdict::Likely;
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

PairMatch StudyExpectedMotion(const AnchoredCapture& earlier, const AnchoredCapture& later,
                              const cv::Point& expected, const MatchingSettings& settings) {
  return PairStudyRun(earlier, later, settings).RunExpecting(expected);
}

PairMatch StudyMotion(const AnchoredCapture& earlier, const AnchoredCapture& later,
                      const cv::Point& motion, const MatchingSettings& settings) {
  return PairStudyRun(earlier, later, settings).RunFor(motion);
}

Join PreferRepetition(Join join, const std::vector<Translation>& steps) {
  auto& others = join.alternatives;
  for (const Translation& step : steps) {
    if (step == join.motion) {
      break;
    }
    const auto repeated = std::find(others.begin(), others.end(), step);
    if (repeated != others.end()) {
      std::rotate(others.begin(), repeated, repeated + 1);
      std::swap(join.motion, others.front());
      break;
    }
  }
  return join;
}

void RequireSameFormat(const CaptureAnchors& earlier, const CaptureAnchors& later) {
  if (earlier.size != later.size || earlier.type != later.type) {
    throw std::invalid_argument("Captures that are joined have to be of one size and one type.");
  }
}

}  // namespace ScrollingCapture
