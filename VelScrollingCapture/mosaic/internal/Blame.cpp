#include <algorithm>
#include <array>
#include <cmath>

#include <opencv2/imgproc.hpp>

#include <VelScrollingCapture/mosaic/internal/Blame.h>
#include <VelScrollingCapture/mosaic/internal/ParallelFor.h>

namespace ScrollingCapture {
namespace {

constexpr int Rounds = 10;

/// From this round on it says next to nothing for a cell that another one is to blame.
constexpr int ExoneratingRounds = 8;
constexpr float LateExoneration = 0.1F;

/// How suspect each kind of pixel is beside one that stands still and is not plain.
constexpr std::array<float, PixelKindCount> KindWeights = {0.6F, 0.85F, 1.0F};

/// When two pixels contradict each other and both move, the content itself has changed: what covers
/// content stands still.
constexpr size_t BothMoving = Moving + PixelKindCount * Moving;

/// What agreement on a pixel that may stand as well as move weighs.
constexpr float PlainAgreement = 0.25F;

/// How much a contradiction weighs when both sides are equally suspect.
constexpr float UndecidedWeight = 0.1F;

/// What is suspected without evidence, and how many pixels of evidence outweigh a suspicion that
/// comes from elsewhere.
constexpr float Prior = 0.2F;
constexpr float PriorPixels = 64;

/// How far the other captures' word counts, against that of the surroundings.
constexpr float WordOfOthers = 0.3F;

/// Weighed evidence about one capture, a value a cell (CV_32F).
struct Weights {
  cv::Mat against;
  cv::Mat inFavour;
};

void SumAround(const cv::Mat& values, int radius, cv::Mat& sums) {
  const cv::Size size(2 * radius + 1, 2 * radius + 1);
  cv::boxFilter(values, sums, -1, size, {-1, -1}, false, cv::BORDER_CONSTANT);
}

/// Brings the suspicion nearer to what the evidence within a radius says.
void Refine(const Weights& weights, int radius, cv::Mat& suspicion) {
  cv::Mat against;
  cv::Mat inFavour;
  SumAround(weights.against, radius, against);
  SumAround(weights.inFavour, radius, inFavour);
  inFavour += against;
  inFavour += PriorPixels;
  cv::scaleAdd(suspicion, PriorPixels, against, against);
  cv::divide(against, inFavour, suspicion);
}

class BlameSearch {
 public:
  BlameSearch(const SequenceEvidence& evidence, const cv::Size& cells, unsigned threadCount)
      : evidence(evidence),
        cells(cells),
        threadCount(threadCount),
        agreement(evidence.standsWithNext.size()),
        weights(agreement.size()),
        suspicion(agreement.size()) {
    for (size_t capture = 0; capture < agreement.size(); ++capture) {
      agreement[capture] = cv::Mat::zeros(cells, CV_32F);
      suspicion[capture] = cv::Mat(cells, CV_32F, cv::Scalar(0.5));
    }
    for (size_t pair = 0; pair < evidence.pairs.size(); ++pair) {
      const PairEvidence& found = evidence.found[pair];
      AddAgreement(found.firstMoved, found.firstPlain, agreement[evidence.pairs[pair].first]);
      AddAgreement(found.secondMoved, found.secondPlain, agreement[evidence.pairs[pair].second]);
    }
  }

  std::vector<cv::Mat> Find() {
    for (int round = 0; round < Rounds; ++round) {
      exoneration = round < ExoneratingRounds ? 1 : LateExoneration;
      WeighContradictions();
      const cv::Mat ofOthers = SuspicionOfPlaces();
      ShareAmongStanding();
      ParallelFor(weights.size(), threadCount,
                  [&](size_t capture) { Conclude(capture, ofOthers); });
    }
    return std::move(suspicion);
  }

 private:
  static void AddAgreement(const cv::Mat& moved, const cv::Mat& plain, cv::Mat& sum) {
    cv::Mat weighed;
    moved.convertTo(weighed, CV_32F);
    sum += weighed;
    plain.convertTo(weighed, CV_32F, PlainAgreement);
    sum += weighed;
  }

  void WeighContradictions() {
    for (size_t capture = 0; capture < weights.size(); ++capture) {
      weights[capture].against = cv::Mat::zeros(cells, CV_32F);
      agreement[capture].copyTo(weights[capture].inFavour);
    }
    for (size_t pair = 0; pair < evidence.pairs.size(); ++pair) {
      for (const Contradiction& contradiction : evidence.found[pair].contradictions) {
        Weigh(evidence.pairs[pair], contradiction);
      }
    }
  }

  void Weigh(const CapturePair& pair, const Contradiction& contradiction) {
    const float first = suspicion[pair.first].ptr<float>()[contradiction.firstCell];
    const float second = suspicion[pair.second].ptr<float>()[contradiction.secondCell];
    for (size_t kinds = 0; kinds < contradiction.counts.size(); ++kinds) {
      if (contradiction.counts[kinds] == 0 || kinds == BothMoving) {
        continue;
      }
      const float count = contradiction.counts[kinds];
      const float firstOdds = first * KindWeights[kinds % PixelKindCount];
      const float secondOdds = second * KindWeights[kinds / PixelKindCount];
      const float share =
          firstOdds * firstOdds / (firstOdds * firstOdds + secondOdds * secondOdds + 1e-9F);
      const float decided = std::abs(2 * share - 1);
      const float weight = count * (UndecidedWeight + (1 - UndecidedWeight) * decided);
      const float exonerated = 1 - (1 - exoneration) * decided;
      Hold(weights[pair.first], contradiction.firstCell, weight * share,
           weight * (1 - share) * exonerated);
      Hold(weights[pair.second], contradiction.secondCell, weight * (1 - share),
           weight * share * exonerated);
    }
  }

  static void Hold(Weights& cellWeights, std::uint32_t cell, float against, float inFavour) {
    cellWeights.against.ptr<float>()[cell] += against;
    cellWeights.inFavour.ptr<float>()[cell] += inFavour;
  }

  /// What all captures together say of each place of the window.
  cv::Mat SuspicionOfPlaces() const {
    Weights sum = {cv::Mat::zeros(cells, CV_32F), cv::Mat::zeros(cells, CV_32F)};
    for (const Weights& cellWeights : weights) {
      sum.against += cellWeights.against;
      sum.inFavour += cellWeights.inFavour;
    }
    cv::Mat places(cells, CV_32F, cv::Scalar(Prior));
    Refine(sum, 1, places);
    return places;
  }

  /// Cells that stay the same from capture to capture share their evidence: first each gets that of
  /// the captures before, then all get the sum.
  void ShareAmongStanding() {
    for (size_t capture = 1; capture < weights.size(); ++capture) {
      const cv::Mat& stands = evidence.standsWithNext[capture - 1];
      cv::add(weights[capture].against, weights[capture - 1].against, weights[capture].against,
              stands);
      cv::add(weights[capture].inFavour, weights[capture - 1].inFavour, weights[capture].inFavour,
              stands);
    }
    for (size_t capture = weights.size(); capture-- > 1;) {
      const cv::Mat& stands = evidence.standsWithNext[capture - 1];
      weights[capture].against.copyTo(weights[capture - 1].against, stands);
      weights[capture].inFavour.copyTo(weights[capture - 1].inFavour, stands);
    }
  }

  void Conclude(size_t capture, const cv::Mat& ofOthers) {
    cv::Mat concluded(cells, CV_32F, cv::Scalar(Prior));
    for (const int radius : {8, 4, 2, 1}) {
      Refine(weights[capture], radius, concluded);
    }
    cv::addWeighted(concluded, 1 - WordOfOthers, ofOthers, WordOfOthers, 0, concluded);
    Refine(weights[capture], 0, concluded);
    suspicion[capture] = concluded;
  }

  const SequenceEvidence& evidence;
  const cv::Size cells;
  const unsigned threadCount;
  std::vector<cv::Mat> agreement;
  std::vector<Weights> weights;
  std::vector<cv::Mat> suspicion;
  float exoneration = 1;
};

}  // namespace

std::vector<cv::Mat> FindBlame(const SequenceEvidence& evidence, const cv::Size& cells,
                               unsigned threadCount) {
  return BlameSearch(evidence, cells, threadCount).Find();
}

}  // namespace ScrollingCapture
