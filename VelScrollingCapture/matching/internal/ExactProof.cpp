#include <algorithm>

#include <VelScrollingCapture/matching/internal/ExactProof.h>
#include <VelScrollingCapture/matching/internal/StandingParts.h>

namespace ScrollingCapture {
namespace {

/// The least number of cells that say anything at all.
constexpr int LeastAgreeing = 12;

/// Parts that stand still may outweigh the content that moves so many times.
constexpr int MostStanding = 16;

/// Below this share of what agrees, a contradiction is small.
constexpr int SmallContradiction = 8;

/// The least number of cells by which a motion explains more than another one.
constexpr int LeastWin = 4;

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

cv::Mat AgreeingCells(const std::vector<Match>& matches, const cv::Point& motion,
                      const cv::Size& cells) {
  cv::Mat agreeing = cv::Mat::zeros(cells, CV_8UC1);
  for (const Match& match : matches) {
    if (match.motion == motion) {
      const cv::Point centre = match.place + cv::Point(PatchSide / 2, PatchSide / 2);
      agreeing.at<unsigned char>(centre / CellSide) = 1;
    }
  }
  return agreeing;
}

/// The cells of the overlap that disagree although nothing stands still there.
cv::Mat ContradictingCells(const Comparison& comparison, const cv::Point& motion,
                           const StandingParts& parts, int& standing) {
  cv::Mat contradicting = cv::Mat::zeros(comparison.unequal.size(), CV_8UC1);
  for (int row = 0; row < contradicting.rows; ++row) {
    for (int column = 0; column < contradicting.cols; ++column) {
      if (comparison.unequal.at<unsigned char>(row, column) == 0) {
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

void CountTiles(const cv::Mat& agreeing, const cv::Mat& contradicting, int tileCells,
                Finding& finding) {
  const cv::Rect all({0, 0}, agreeing.size());
  for (int row = 0; row < all.height; row += tileCells) {
    for (int column = 0; column < all.width; column += tileCells) {
      const cv::Rect tile = cv::Rect(column, row, tileCells, tileCells) & all;
      const int pro = cv::countNonZero(agreeing(tile));
      const int contra = cv::countNonZero(contradicting(tile));
      finding.agreeing += pro;
      finding.contradicting += contra;
      finding.tilesFor += static_cast<int>(pro > contra);
      finding.tilesAgainst += static_cast<int>(contra > 0 && contra >= pro);
    }
  }
}

}  // namespace

bool Finding::IsPlausible() const {
  return agreeing >= LeastAgreeing && tilesFor >= tilesAgainst &&
         agreeing * MostStanding >= standing;
}

bool Finding::IsClean() const { return contradicting * SmallContradiction <= agreeing; }

Finding ExactProof::Examine(const cv::Point& motion) const {
  Finding finding;
  finding.motion = motion;
  finding.comparison = Compare(earlier, later, motion, Vectors::Widest);
  const StandingParts parts = FindStandingParts(matches, motion, later.size());
  const cv::Mat contradicting =
      ContradictingCells(finding.comparison, motion, parts, finding.standing);
  CountTiles(AgreeingCells(matches, motion, contradicting.size()), contradicting,
             TileCells(later.size()), finding);
  return finding;
}

bool ExactProof::Beats(const cv::Point& motion, const cv::Point& rival) const {
  const cv::Size cells = CellsOf(later.size());
  const cv::Rect overlap = OverlapOf(later.size(), motion) & OverlapOf(later.size(), rival);
  std::vector<Match> shared;
  const cv::Size patch(PatchSide, PatchSide);
  std::copy_if(matches.begin(), matches.end(), std::back_inserter(shared), [&](const Match& match) {
    return (overlap & cv::Rect(match.place, patch)).size() == patch;
  });
  const int wins = cv::countNonZero(AgreeingCells(shared, motion, cells));
  const int losses = cv::countNonZero(AgreeingCells(shared, rival, cells));
  return wins >= LeastWin && wins >= 2 * losses;
}

}  // namespace ScrollingCapture
