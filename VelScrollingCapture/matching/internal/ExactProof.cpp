#include <algorithm>

#include <VelScrollingCapture/matching/internal/ExactProof.h>
#include <VelScrollingCapture/matching/internal/StandingParts.h>

namespace ScrollingCapture {
namespace {

/// The least number of cells that say anything at all: so many, or this part of a small capture.
constexpr int LeastUnique = 12;
constexpr int LeastPartUnique = 6;

/// A contradiction may outweigh what is unique so many times, when what agrees outweighs it.
constexpr int MostTilesAgainst = 3;

/// Where nothing is unique, contradictions are a smaller part of what agrees.
constexpr int LeastContradiction = 64;
constexpr int LeastPossible = 24;

constexpr int ManyUnique = 48;

/// Below this share of what agrees, a contradiction is small.
constexpr int SmallContradiction = 8;

/// A rival explains as much as a motion when it contradicts itself hardly more and agrees hardly
/// less, for its overlap.
constexpr double MostRivalContradiction = 1.5;
constexpr double LeastRivalAgreement = 0.75;

/// So many cells may be excused for each one that is seen to stand still, or to move.
constexpr int MostExcuses = 32;

/// The least number of cells by which a motion explains more than another one.
constexpr int LeastWin = 4;

/// Bars at an edge take at most one of so many parts of a window.
constexpr int EdgeParts = 6;

/// A bar takes at most this share of a window.
constexpr double LargestBar = 0.4;

/// Captures of fewer cells along one side are small.
constexpr int SmallSide = 20;

constexpr int MostTileCells = 4;

/// Tiles are squares of so many cells a side, fewer in small captures.
int TileCells(const cv::Size& capture) {
  return std::clamp(std::min(capture.width, capture.height) / 160, 1, MostTileCells);
}

/// Whether any of the cells that a cell of the later capture lies on in the earlier one is marked.
bool IsMarkedInEarlier(const cv::Mat& marks, const cv::Rect& pixels) {
  const cv::Point first = pixels.tl() / CellSide;
  const cv::Point last = (pixels.br() - cv::Point(1, 1)) / CellSide;
  for (int row = first.y; row <= last.y; ++row) {
    for (int column = first.x; column <= last.x; ++column) {
      if (marks.at<unsigned char>(row, column) != 0) {
        return true;
      }
    }
  }
  return false;
}

/// The cells that lie within a patch.
cv::Rect CellsWithin(const cv::Point& place) {
  const cv::Point first = (place + cv::Point(CellSide - 1, CellSide - 1)) / CellSide;
  const cv::Point end = (place + cv::Point(PatchSide, PatchSide)) / CellSide;
  return {first, end};
}

/// The cells that patches bear witness for: the one in the middle of each, or all that lie within
/// it in small captures, where no part of the content has many patches.
cv::Mat UniqueCells(const std::vector<Match>& matches, const cv::Point& motion,
                    const cv::Size& cells) {
  cv::Mat agreeing = cv::Mat::zeros(cells, CV_8UC1);
  const bool isSmall = std::min(cells.width, cells.height) < SmallSide;
  for (const Match& match : matches) {
    if (match.motion != motion) {
      continue;
    }
    if (isSmall) {
      agreeing(CellsWithin(match.place)).setTo(1);
    } else {
      agreeing.at<unsigned char>(CentreOf(match.place) / CellSide) = 1;
    }
  }
  return agreeing;
}

int LeastUniqueOf(const cv::Size& cells) {
  return std::min(LeastUnique, cells.area() / LeastPartUnique);
}

bool IsOfOneColour(const int* pixels, int count) {
  return std::all_of(pixels, pixels + count,
                     [colour = *pixels](int pixel) { return pixel == colour; });
}

/// The rows, or columns, that anchors vouch for which stand still, and those close to them.
std::vector<bool> StandingLines(const std::vector<Match>& matches, int lines,
                                int cv::Point::*axis) {
  std::vector<bool> standing(static_cast<std::size_t>(lines));
  for (const Match& match : matches) {
    if (match.motion == cv::Point()) {
      const int first = std::max(0, match.place.*axis - CellSide);
      const int end = std::min(lines, match.place.*axis + PatchSide + CellSide);
      std::fill(standing.begin() + first, standing.begin() + end, true);
    }
  }
  return standing;
}

/// How many rows from one end on stand still as far as can be told: anchors say so, or no anchor
/// can, since they are of one colour or fewer than a patch has.
int RowsOfBar(const cv::Mat& earlier, const cv::Mat& later, const std::vector<bool>& standing,
              bool fromBelow) {
  const int most = static_cast<int>(later.rows * LargestBar);
  int told = 0;
  int rows = 0;
  for (; rows < most; ++rows) {
    const int row = fromBelow ? later.rows - 1 - rows : rows;
    const int* const pixels = later.ptr<int>(row);
    if (!std::equal(pixels, pixels + later.cols, earlier.ptr<int>(row))) {
      break;
    }
    const bool isTold = told == rows && (standing[static_cast<std::size_t>(row)] ||
                                         IsOfOneColour(pixels, later.cols));
    told += static_cast<int>(isTold);
  }
  return rows - told < PatchSide ? rows : told;
}

cv::Range RowsBetweenBars(const cv::Mat& earlier, const cv::Mat& later,
                          const std::vector<bool>& standing) {
  return {RowsOfBar(earlier, later, standing, false),
          later.rows - RowsOfBar(earlier, later, standing, true)};
}

/// The cells of the overlap that disagree although nothing stands still there.
cv::Mat ContradictingCells(const Comparison& comparison, const cv::Point& motion,
                           const StandingParts& parts, int& standing) {
  cv::Mat contradicting = cv::Mat::zeros(comparison.unequal.size(), CV_8UC1);
  for (int row = 0; row < contradicting.rows; ++row) {
    const auto* const unequal = comparison.unequal.ptr<unsigned char>(row);
    for (int column = 0; column < contradicting.cols; ++column) {
      if (unequal[column] == 0) {
        continue;
      }
      const cv::Rect pixels =
          cv::Rect(column * CellSide, row * CellSide, CellSide, CellSide) & comparison.overlap;
      if (parts.later.at<unsigned char>(row, column) != 0 ||
          IsMarkedInEarlier(parts.earlier, pixels - motion)) {
        ++standing;
      } else {
        contradicting.at<unsigned char>(row, column) = 1;
      }
    }
  }
  return contradicting;
}

/// The cells with detail that agree and do not stand still.
cv::Mat AgreeingCells(const Comparison& comparison, const cv::Mat& detailed,
                      const StandingParts& parts) {
  cv::Mat agreeing = cv::Mat::zeros(detailed.size(), CV_8UC1);
  const cv::Point first =
      (comparison.overlap.tl() + cv::Point(CellSide - 1, CellSide - 1)) / CellSide;
  const cv::Point end = comparison.overlap.br() / CellSide;
  if (first.x < end.x && first.y < end.y) {
    const cv::Rect whole(first, end);
    agreeing(whole) =
        detailed(whole) & (comparison.unequal(whole) == 0) & (parts.later(whole) == 0);
  }
  return agreeing;
}

/// Squares of cells where one kind of cell outweighs another one, and the other way round.
struct Tiles {
  int more = 0;
  int notMore = 0;
};

/// How many cells of a tile are marked.
int CountMarked(const cv::Mat& cells, const cv::Rect& tile) {
  int marked = 0;
  for (int row = tile.y; row < tile.br().y; ++row) {
    const auto* const line = cells.ptr<unsigned char>(row);
    for (int column = tile.x; column < tile.br().x; ++column) {
      marked += static_cast<int>(line[column] != 0);
    }
  }
  return marked;
}

Tiles CompareTiles(const cv::Mat& one, const cv::Mat& other, int tileCells, const cv::Rect& part) {
  Tiles tiles;
  for (int row = part.y; row < part.br().y; row += tileCells) {
    for (int column = part.x; column < part.br().x; column += tileCells) {
      const cv::Rect tile = cv::Rect(column, row, tileCells, tileCells) & part;
      const int left = CountMarked(one, tile);
      const int right = CountMarked(other, tile);
      tiles.more += static_cast<int>(left > right);
      tiles.notMore += static_cast<int>(right > 0 && right >= left);
    }
  }
  return tiles;
}

cv::Rect AllOf(const cv::Mat& cells) { return {{0, 0}, cells.size()}; }

cv::Rect InteriorOf(const cv::Mat& cells) {
  const cv::Point margin(cells.cols / EdgeParts, cells.rows / EdgeParts);
  return {margin, cv::Point(cells.size()) - margin};
}

}  // namespace

bool Finding::IsPlausible(bool isDominant) const {
  if (unique < LeastUniqueOf(comparison.unequal.size()) ||
      standing > MostExcuses * std::min(unique, witnesses)) {
    return false;
  }
  if (IsWitnessed()) {
    return true;
  }
  const bool isUniqueEnough = tilesUnique * MostTilesAgainst >= tilesAgainst || isDominant;
  return (isUniqueEnough && tilesAgreeing >= 2 * tilesAgainst) ||
         (isDominant && unique >= ManyUnique && 2 * tilesAgreeing >= tilesAgainst);
}

bool Finding::IsNoBetterThan(const Finding& rival) const {
  const double share = static_cast<double>(rival.comparison.Compared()) /
                       static_cast<double>(std::max<std::int64_t>(1, comparison.Compared()));
  return rival.contradicting <= MostRivalContradiction * share * contradicting &&
         rival.agreeing >= LeastRivalAgreement * share * agreeing;
}

bool Finding::IsClean() const { return contradicting * SmallContradiction <= unique; }

bool Finding::IsPossible() const {
  return agreeing >= LeastPossible && standing <= agreeing &&
         contradicting * LeastContradiction <= agreeing;
}

const cv::Mat& ExactProof::Detailed() const {
  if (detailed.empty()) {
    const cv::Mat across = Compare(later, later, {1, 0}, Vectors::Widest).unequal;
    const cv::Mat down = Compare(later, later, {0, 1}, Vectors::Widest).unequal;
    detailed = (across > 0) & (down > 0);
  }
  return detailed;
}

cv::Rect ExactProof::ContentFor(const cv::Point& motion) const {
  cv::Rect content({0, 0}, later.size());
  if (motion.x == 0 && motion.y != 0) {
    if (!contentRows) {
      contentRows =
          RowsBetweenBars(earlier, later, StandingLines(matches, later.rows, &cv::Point::y));
    }
    content.y = contentRows->start;
    content.height = contentRows->size();
  } else if (motion.y == 0 && motion.x != 0) {
    if (!contentColumns) {
      contentColumns = RowsBetweenBars(earlier.t(), later.t(),
                                       StandingLines(matches, later.cols, &cv::Point::x));
    }
    content.x = contentColumns->start;
    content.width = contentColumns->size();
  }
  return content;
}

Finding ExactProof::Examine(const cv::Point& motion) const {
  return Examine(motion, FindStandingParts(matches, motion, later.size()));
}

Finding ExactProof::Examine(const cv::Point& motion, const StandingParts& parts) const {
  Finding finding;
  finding.motion = motion;
  finding.comparison = Compare(earlier, later, motion, ContentFor(motion), Vectors::Widest);
  finding.witnesses = parts.witnesses;
  const cv::Mat contradicting =
      ContradictingCells(finding.comparison, motion, parts, finding.standing);
  const cv::Mat unique = UniqueCells(matches, motion, contradicting.size());
  finding.unique = cv::countNonZero(unique);
  finding.contradicting = cv::countNonZero(contradicting);
  const int tileCells = TileCells(later.size());
  const Tiles byUnique = CompareTiles(unique, contradicting, tileCells, AllOf(unique));
  finding.tilesUnique = byUnique.more;
  finding.tilesAgainstUnique = byUnique.notMore;
  if (byUnique.notMore > 0 || finding.unique < LeastUnique) {
    const cv::Mat agreeing = AgreeingCells(finding.comparison, Detailed(), parts);
    finding.agreeing = cv::countNonZero(agreeing);
    const Tiles byAgreeing = CompareTiles(agreeing, contradicting, tileCells, AllOf(unique));
    finding.tilesAgreeing = byAgreeing.more;
    finding.tilesAgainst = byAgreeing.notMore;
  }
  return finding;
}

bool ExactProof::IsUniqueInside(const cv::Point& motion) const {
  const cv::Mat unique = UniqueCells(matches, motion, CellsOf(later.size()));
  const cv::Rect interior = InteriorOf(unique);
  return cv::countNonZero(unique.rowRange(interior.y, interior.br().y)) >= LeastUnique;
}

bool ExactProof::StandsStill() const {
  const Comparison comparison = Compare(earlier, later, {}, Vectors::Widest);
  const StandingParts none = FindStandingParts({}, {}, later.size());
  int standing = 0;
  const cv::Mat contradicting = ContradictingCells(comparison, {}, none, standing);
  const cv::Mat agreeing = AgreeingCells(comparison, Detailed(), none);
  const auto tilesOf = [&](const cv::Rect& part) {
    const Tiles tiles = CompareTiles(agreeing, contradicting, TileCells(later.size()), part);
    return tiles.notMore == 0 ? 1e9 : 1.0 * tiles.more / tiles.notMore;
  };
  return cv::countNonZero(UniqueCells(matches, {}, agreeing.size())) >= LeastUnique &&
         tilesOf(AllOf(agreeing)) >= 1.5 && tilesOf(InteriorOf(agreeing)) >= 0.5;
}

bool ExactProof::Beats(const cv::Point& motion, const cv::Point& rival) const {
  const cv::Size cells = CellsOf(later.size());
  const cv::Rect overlap = OverlapOf(later.size(), motion) & OverlapOf(later.size(), rival);
  std::vector<Match> shared;
  const cv::Size patch(PatchSide, PatchSide);
  std::copy_if(matches.begin(), matches.end(), std::back_inserter(shared), [&](const Match& match) {
    return (overlap & cv::Rect(match.place, patch)).size() == patch;
  });
  const int wins = cv::countNonZero(UniqueCells(shared, motion, cells));
  const int losses = cv::countNonZero(UniqueCells(shared, rival, cells));
  return wins >= LeastWin && wins >= 2 * losses;
}

}  // namespace ScrollingCapture
