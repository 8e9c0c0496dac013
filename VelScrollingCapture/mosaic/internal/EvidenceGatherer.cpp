#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <map>
#include <utility>

#include <VelScrollingCapture/mosaic/internal/CellMarks.h>
#include <VelScrollingCapture/mosaic/internal/Cells.h>
#include <VelScrollingCapture/mosaic/internal/EvidenceGatherer.h>
#include <VelScrollingCapture/mosaic/internal/PixelComparison.h>
#include <VelScrollingCapture/mosaic/internal/PixelKinds.h>

namespace ScrollingCapture {
namespace {

/// Of how many captures of a stretch the pixels' kinds are looked at together; a byte a pixel each.
constexpr size_t GroupLength = 4;

/// Cells of which this share stands still are taken to stand still, in eighths.
constexpr int StandingEighths = 7;

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

/// Which cells show the same in both captures. Cells in rows that are not wanted are said to.
cv::Mat StandingCells(const cv::Mat& first, const cv::Mat& second,
                      const std::vector<bool>& wantedRows) {
  cv::Mat different = cv::Mat::zeros(CellsOver(first.size()), CV_8U);
  std::vector<std::uint8_t> differs(static_cast<size_t>(first.cols));
  for (int row = 0; row < first.rows; ++row) {
    if (!wantedRows[static_cast<size_t>(row / CellSize)] ||
        !MarkDifferences(first.ptr(row), second.ptr(row), differs.size(), first.elemSize(),
                         differs.data())) {
      continue;
    }
    std::uint8_t* const counts = different.ptr(row / CellSize);
    ForEachCell(0, differs.size(), [&](int cell, size_t begin, size_t count) {
      const int marked = CountMarks(LoadMarks(differs.data() + begin, count));
      counts[cell] = static_cast<std::uint8_t>(counts[cell] + marked);
    });
  }
  constexpr int MostDifferent = CellSize * CellSize * (8 - StandingEighths) / 8;
  const cv::Mat standing = (different <= MostDifferent) & StandsMostly;
  return standing | ((different == 0) & StandsExactly);
}

}  // namespace

const SequenceEvidence& EvidenceGatherer::Gather(const Stretch& next, size_t nextEnd) {
  MoveTo(next);
  FindWantedRows(nextEnd);
  workers.Do(next.Count(), [&](size_t i) { FindStanding(i); });
  kinds.assign(next.Count(), cv::Mat());
  for (size_t begin = 0; begin < next.Count(); begin += GroupLength) {
    CompareGroup(begin, std::min(begin + GroupLength, next.Count()));
  }
  kinds.clear();
  return evidence;
}

void EvidenceGatherer::MoveTo(const Stretch& next) {
  std::map<std::pair<size_t, size_t>, PairEvidence> known;
  for (size_t i = 0; i < evidence.pairs.size(); ++i) {
    const CapturePair& pair = evidence.pairs[i];
    known[{stretch.begin + pair.first, stretch.begin + pair.second}] = std::move(evidence.found[i]);
  }
  evidence.pairs.clear();
  evidence.found.clear();
  std::vector<cv::Mat> standsWithNext(next.Count());
  for (size_t capture = next.begin; capture + 1 < stretch.end; ++capture) {
    standsWithNext[capture - next.begin] = evidence.standsWithNext[capture - stretch.begin];
  }
  evidence.standsWithNext = std::move(standsWithNext);
  for (size_t capture = next.begin; capture < next.end; ++capture) {
    for (const size_t partner : LaterPartners(layout, capture, next.end)) {
      evidence.pairs.push_back({capture - next.begin, partner - next.begin});
      evidence.found.push_back(std::move(known[{capture, partner}]));
    }
  }
  stretch = next;
}

/// Evidence is wanted where it counts for cells near disputed ones. The next stretch takes over
/// what it has in common with this one, so that what is disputed there counts as well.
void EvidenceGatherer::FindWantedRows(size_t nextEnd) {
  constexpr int Reach = 2 * EvidenceReach;
  const int rows = CellsOver(layout.CaptureSize().height);
  wantedRows.assign(static_cast<size_t>(rows), false);
  for (size_t capture = stretch.begin; capture < nextEnd; ++capture) {
    const cv::Mat cells = FindDisputedCells(layout, disputed, capture);
    for (int row = 0; row < rows; ++row) {
      if (cv::countNonZero(cells.row(row)) > 0) {
        std::fill(wantedRows.begin() + std::max(row - Reach, 0),
                  wantedRows.begin() + std::min(row + Reach + 1, rows), true);
      }
    }
  }
}

void EvidenceGatherer::FindStanding(size_t i) {
  cv::Mat& standing = evidence.standsWithNext[i];
  if (i + 1 == stretch.Count()) {
    standing = cv::Mat::zeros(CellsOver(layout.CaptureSize()), CV_8U);
  } else if (standing.empty()) {
    const size_t capture = stretch.begin + i;
    standing = StandingCells(*source.Get(capture), *source.Get(capture + 1), wantedRows);
  }
}

/// Compares some captures with their later partners. Later groups need these no more.
void EvidenceGatherer::CompareGroup(size_t begin, size_t end) {
  const std::vector<size_t> pairs = UnknownPairs(begin, end);
  std::vector<size_t> captures;
  for (const size_t pair : pairs) {
    captures.push_back(evidence.pairs[pair].first);
    captures.push_back(evidence.pairs[pair].second);
  }
  std::sort(captures.begin(), captures.end());
  captures.erase(std::unique(captures.begin(), captures.end()), captures.end());
  workers.Do(captures.size(), [&](size_t i) { LookAt(captures[i]); });
  workers.Do(pairs.size(), [&](size_t i) { Compare(pairs[i]); });
  std::fill(kinds.begin() + static_cast<std::ptrdiff_t>(begin),
            kinds.begin() + static_cast<std::ptrdiff_t>(end), cv::Mat());
}

/// The pairs of some first captures that have not been compared yet.
std::vector<size_t> EvidenceGatherer::UnknownPairs(size_t begin, size_t end) const {
  std::vector<size_t> unknown;
  for (size_t i = 0; i < evidence.pairs.size(); ++i) {
    const size_t first = evidence.pairs[i].first;
    if (first >= begin && first < end && evidence.found[i].firstMoved.empty()) {
      unknown.push_back(i);
    }
  }
  return unknown;
}

void EvidenceGatherer::LookAt(size_t i) {
  if (kinds[i].empty()) {
    const size_t capture = stretch.begin + i;
    kinds[i] =
        FindPixelKinds(source, layout, capture, FindDisputedCells(layout, disputed, capture));
  }
}

void EvidenceGatherer::Compare(size_t i) {
  const CapturePair& pair = evidence.pairs[i];
  evidence.found[i] =
      GatherEvidence(source, layout, {stretch.begin + pair.first, stretch.begin + pair.second},
                     kinds[pair.first], kinds[pair.second], wantedRows);
}

}  // namespace ScrollingCapture
