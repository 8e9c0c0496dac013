#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

#include <opencv2/imgproc.hpp>

#include <VelScrollingCapture/mosaic/internal/Blame.h>
#include <VelScrollingCapture/mosaic/internal/SurroundingSums.h>

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

/// How far away evidence counts for a cell: the less, the further.
constexpr std::array<int, 4> Radii = {1, 2, 4, EvidenceReach};

/// Weighed evidence about one capture, a value a cell (CV_32F).
struct Weights {
  cv::Mat against;
  cv::Mat inFavour;
};

/// What the contradictions between two cells say about one of them.
struct Judgement {
  float against = 0;
  float inFavour = 0;

  void Add(float moreAgainst, float moreInFavour) {
    against += moreAgainst;
    inFavour += moreInFavour;
  }
};

/// Brings a suspicion nearer to what evidence says.
float Refined(float suspicion, float against, float inFavour) {
  return (suspicion * PriorPixels + against) / (inFavour + against + PriorPixels);
}

void Refine(const float* against, const float* inFavour, size_t count, float* suspicion) {
  for (size_t i = 0; i < count; ++i) {
    suspicion[i] = Refined(suspicion[i], against[i], inFavour[i]);
  }
}

/// Marked cells, in rectangles: one for each sequence of rows that have some.
std::vector<cv::Rect> BandsOf(const cv::Mat& marks) {
  std::vector<cv::Rect> bands;
  bool goesOn = false;
  for (int row = 0; row < marks.rows; ++row) {
    cv::Rect inRow = cv::boundingRect(marks.row(row));
    inRow.y = row;
    if (goesOn && !inRow.empty()) {
      bands.back() |= inRow;
    } else if (!inRow.empty()) {
      bands.push_back(inRow);
    }
    goesOn = !inRow.empty();
  }
  return bands;
}

/// Calls `work(row, columns)` for each row of some rectangles.
template <typename Work>
void ForEachRow(const std::vector<cv::Rect>& areas, Work work) {
  for (const cv::Rect& area : areas) {
    for (int row = area.y; row < area.y + area.height; ++row) {
      work(row, cv::Range(area.x, area.x + area.width));
    }
  }
}

float* ValuesAt(const cv::Rect& places, cv::Mat& values) {
  return values.ptr<float>(places.y, places.x);
}

/// Adds the values of cells that stand still.
void AddStanding(const std::uint8_t* stands, const float* values, size_t count, float* sums) {
  for (size_t i = 0; i < count; ++i) {
    const float value = values[i];
    sums[i] += stands[i] != 0 ? value : 0;
  }
}

/// Replaces the values of cells that stand still.
void CopyStanding(const std::uint8_t* stands, const float* values, size_t count, float* copies) {
  for (size_t i = 0; i < count; ++i) {
    const float value = values[i];
    copies[i] = stands[i] != 0 ? value : copies[i];
  }
}

/// Pairs in groups, within which each capture is in one pair at most.
std::vector<std::vector<size_t>> GroupedPairs(const std::vector<CapturePair>& pairs,
                                              size_t captures) {
  std::vector<std::vector<size_t>> groups;
  std::vector<std::vector<bool>> isTaken;  // by group and capture
  for (size_t i = 0; i < pairs.size(); ++i) {
    const auto free = std::find_if(isTaken.begin(), isTaken.end(), [&](const auto& taken) {
      return !taken[pairs[i].first] && !taken[pairs[i].second];
    });
    const auto group = static_cast<size_t>(free - isTaken.begin());
    if (free == isTaken.end()) {
      isTaken.emplace_back(captures);
      groups.emplace_back();
    }
    isTaken[group][pairs[i].first] = isTaken[group][pairs[i].second] = true;
    groups[group].push_back(i);
  }
  return groups;
}

class BlameSearch {
 public:
  BlameSearch(const SequenceEvidence& evidence, const cv::Size& cells, Workers& workers)
      : evidence(evidence),
        cells(cells),
        workers(workers),
        agreement(evidence.standsWithNext.size()),
        weights(agreement.size()),
        suspicion(agreement.size()),
        independentPairs(GroupedPairs(evidence.pairs, agreement.size())),
        contradicted(agreement.size()),
        sum{cv::Mat(cells, CV_32F), cv::Mat(cells, CV_32F)},
        ofOthers(cells, CV_32F) {
    for (size_t capture = 0; capture < agreement.size(); ++capture) {
      agreement[capture] = cv::Mat::zeros(cells, CV_32F);
      weights[capture] = {cv::Mat(cells, CV_32F), cv::Mat(cells, CV_32F)};
      suspicion[capture] = cv::Mat(cells, CV_32F, cv::Scalar(0.5));
    }
    for (size_t pair = 0; pair < evidence.pairs.size(); ++pair) {
      const PairEvidence& found = evidence.found[pair];
      AddAgreement(found.firstMoved, found.firstPlain, agreement[evidence.pairs[pair].first]);
      AddAgreement(found.secondMoved, found.secondPlain, agreement[evidence.pairs[pair].second]);
    }
    FindContradicted();
  }

  std::vector<cv::Mat> Find() {
    for (int round = 0; round < Rounds; ++round) {
      exoneration = round < ExoneratingRounds ? 1 : LateExoneration;
      if (round + 1 == Rounds) {
        LookEverywhere();
      }
      WeighContradictions();
      workers.Do(inReach.size(), [&](size_t area) { Share(inReach[area]); });
      FindSuspicionOfPlaces();
      workers.Do(weights.size(), [&](size_t capture) { Conclude(capture); });
    }
    return std::move(suspicion);
  }

 private:
  static void AddAgreement(const cv::Mat& moved, const cv::Mat& plain, cv::Mat& sum) {
    const std::uint8_t* const movedPixels = moved.ptr();
    const std::uint8_t* const plainPixels = plain.ptr();
    auto* const sums = sum.ptr<float>();
    for (size_t i = 0; i < sum.total(); ++i) {
      sums[i] +=
          static_cast<float>(movedPixels[i]) + static_cast<float>(plainPixels[i]) * PlainAgreement;
    }
  }

  /// Until the last round only cells that are contradicted have to be judged.
  void FindContradicted() {
    std::vector<cv::Mat> marks(weights.size());
    for (cv::Mat& ofCapture : marks) {
      ofCapture = cv::Mat::zeros(cells, CV_8U);
    }
    for (size_t pair = 0; pair < evidence.pairs.size(); ++pair) {
      for (const Contradiction& contradiction : evidence.found[pair].contradictions) {
        marks[evidence.pairs[pair].first].ptr()[contradiction.firstCell] = 1;
        marks[evidence.pairs[pair].second].ptr()[contradiction.secondCell] = 1;
      }
    }
    cv::Mat reached = cv::Mat::zeros(cells, CV_8U);
    for (size_t capture = 0; capture < marks.size(); ++capture) {
      contradicted[capture] = BandsOf(marks[capture]);
      reached |= marks[capture];
    }
    constexpr int Reach = 2 * EvidenceReach + 1;
    cv::dilate(reached, reached, cv::Mat::ones(Reach, Reach, CV_8U));
    ForEachRow(BandsOf(reached), [&](int row, const cv::Range& columns) {
      inReach.emplace_back(columns.start, row, columns.size(), 1);
    });
  }

  void LookEverywhere() {
    const std::vector<cv::Rect> everywhere = {cv::Rect({}, cells)};
    std::fill(contradicted.begin(), contradicted.end(), everywhere);
    inReach.clear();
    ForEachRow(everywhere, [&](int row, const cv::Range& columns) {
      inReach.emplace_back(columns.start, row, columns.size(), 1);
    });
  }

  void WeighContradictions() {
    workers.Do(weights.size(), [&](size_t capture) { StartAfresh(capture); });
    for (const std::vector<size_t>& pairs : independentPairs) {
      workers.Do(pairs.size(), [&](size_t i) {
        for (const Contradiction& contradiction : evidence.found[pairs[i]].contradictions) {
          Weigh(evidence.pairs[pairs[i]], contradiction);
        }
      });
    }
  }

  void StartAfresh(size_t capture) {
    for (const cv::Rect& places : inReach) {
      std::fill_n(ValuesAt(places, weights[capture].against), places.width, 0.0F);
      std::copy_n(ValuesAt(places, agreement[capture]), places.width,
                  ValuesAt(places, weights[capture].inFavour));
    }
  }

  void Weigh(const CapturePair& pair, const Contradiction& contradiction) {
    const float first = suspicion[pair.first].ptr<float>()[contradiction.firstCell];
    const float second = suspicion[pair.second].ptr<float>()[contradiction.secondCell];
    Judgement ofFirst;
    Judgement ofSecond;
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
      ofFirst.Add(weight * share, weight * (1 - share) * exonerated);
      ofSecond.Add(weight * (1 - share), weight * share * exonerated);
    }
    Hold(weights[pair.first], contradiction.firstCell, ofFirst);
    Hold(weights[pair.second], contradiction.secondCell, ofSecond);
  }

  static void Hold(Weights& cellWeights, std::uint32_t cell, const Judgement& judgement) {
    cellWeights.against.ptr<float>()[cell] += judgement.against;
    cellWeights.inFavour.ptr<float>()[cell] += judgement.inFavour;
  }

  /// Finds what all captures together say of places, and lets cells that stay the same from capture
  /// to capture share their evidence.
  /// @param places cells of the window, all in one row
  void Share(const cv::Rect& places) {
    for (cv::Mat Weights::*kind : {&Weights::against, &Weights::inFavour}) {
      SumUp(places, kind);
      ShareAmongStanding(places, kind);
    }
  }

  void SumUp(const cv::Rect& places, cv::Mat Weights::*kind) {
    float* const sums = ValuesAt(places, sum.*kind);
    std::fill_n(sums, places.width, 0.0F);
    for (Weights& ofCapture : weights) {
      const float* const values = ValuesAt(places, ofCapture.*kind);
      for (size_t i = 0; i < static_cast<size_t>(places.width); ++i) {
        sums[i] += values[i];
      }
    }
  }

  /// First each cell gets the evidence of the captures before, then all get the sum.
  void ShareAmongStanding(const cv::Rect& places, cv::Mat Weights::*kind) {
    const auto stands = [&](size_t capture) {
      return evidence.standsWithNext[capture].ptr(places.y, places.x);
    };
    const auto values = [&](size_t capture) { return ValuesAt(places, weights[capture].*kind); };
    const auto count = static_cast<size_t>(places.width);
    for (size_t capture = 1; capture < weights.size(); ++capture) {
      AddStanding(stands(capture - 1), values(capture - 1), count, values(capture));
    }
    for (size_t capture = weights.size(); capture-- > 1;) {
      CopyStanding(stands(capture - 1), values(capture), count, values(capture - 1));
    }
  }

  /// What all captures together say of each place of the window.
  void FindSuspicionOfPlaces() {
    SurroundingSums against({1});
    SurroundingSums inFavour({1});
    ForEachRow(inReach, [&](int row, const cv::Range& columns) {
      against.Find(sum.against, row, columns);
      inFavour.Find(sum.inFavour, row, columns);
      auto* const places = ofOthers.ptr<float>(row, columns.start);
      for (size_t i = 0; i < static_cast<size_t>(columns.size()); ++i) {
        places[i] = Refined(Prior, against.Within(0)[i], inFavour.Within(0)[i]);
      }
    });
  }

  void Conclude(size_t capture) {
    const Weights& ofCapture = weights[capture];
    SurroundingSums against({Radii.begin(), Radii.end()});
    SurroundingSums inFavour({Radii.begin(), Radii.end()});
    ForEachRow(contradicted[capture], [&](int row, const cv::Range& columns) {
      against.Find(ofCapture.against, row, columns);
      inFavour.Find(ofCapture.inFavour, row, columns);
      auto* const concluded = suspicion[capture].ptr<float>(row, columns.start);
      const auto count = static_cast<size_t>(columns.size());
      std::fill_n(concluded, count, Prior);
      for (size_t radius = Radii.size(); radius-- > 0;) {
        Refine(against.Within(radius), inFavour.Within(radius), count, concluded);
      }
      const float* const others = ofOthers.ptr<float>(row, columns.start);
      for (size_t i = 0; i < count; ++i) {
        concluded[i] = concluded[i] * (1 - WordOfOthers) + others[i] * WordOfOthers;
      }
      Refine(ofCapture.against.ptr<float>(row, columns.start),
             ofCapture.inFavour.ptr<float>(row, columns.start), count, concluded);
    });
  }

  const SequenceEvidence& evidence;
  const cv::Size cells;
  Workers& workers;
  std::vector<cv::Mat> agreement;
  std::vector<Weights> weights;
  std::vector<cv::Mat> suspicion;
  std::vector<std::vector<size_t>> independentPairs;  ///< groups that share no capture
  std::vector<std::vector<cv::Rect>> contradicted;    ///< for each capture the cells to judge
  std::vector<cv::Rect> inReach;                      ///< what counts for them, in parts of rows
  Weights sum;                                        ///< of all captures, by place of the window
  cv::Mat ofOthers;                                   ///< the suspicion that follows from it
  float exoneration = 1;
};

}  // namespace

std::vector<cv::Mat> FindBlame(const SequenceEvidence& evidence, const cv::Size& cells,
                               Workers& workers) {
  return BlameSearch(evidence, cells, workers).Find();
}

}  // namespace ScrollingCapture
