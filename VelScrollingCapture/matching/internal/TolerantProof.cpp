#include <algorithm>
#include <cstdint>

#include <VelScrollingCapture/matching/internal/Comparison.h>
#include <VelScrollingCapture/matching/internal/TolerantProof.h>

namespace ScrollingCapture {
namespace {

/// Tiles without detail, and those outside of the overlap, say nothing.
constexpr float Silent = -1;

/// The variance from which on a tile has detail, in grey levels squared.
constexpr double LeastVariance = 36;

/// Up to this part of the variance may be left for a tile to agree.
constexpr float MostResidue = 0.25F;

/// A residue below this one is as good as none.
constexpr float LeastResidue = 0.02F;

/// Bars at an edge take at most one of so many parts of a window.
constexpr int EdgeParts = 6;

/// The least number of tiles of the largest size; small ones say less.
constexpr int LeastTiles = 8;
constexpr int LargestTile = 32;
constexpr int ManyTiles = 24;
constexpr int LeastWin = 4;

int TileSide(const cv::Size& capture) {
  const int shortSide = std::min(capture.width, capture.height);
  return shortSide < 200 ? 8 : shortSide < 400 ? 16 : LargestTile;
}

/// The sum of the squared deviations of some numbers from their mean.
struct Deviations {
  std::int64_t sum = 0;
  std::int64_t squares = 0;

  double Variance(int count) const {
    const double mean = static_cast<double>(sum) / count;
    return static_cast<double>(squares) / count - mean * mean;
  }
};

Deviations DeviationsOf(const cv::Mat& tile) {
  Deviations deviations;
  for (int row = 0; row < tile.rows; ++row) {
    const auto* const values = tile.ptr<unsigned char>(row);
    int sum = 0;
    int squares = 0;
    for (int i = 0; i < tile.cols; ++i) {
      sum += values[i];
      squares += values[i] * values[i];
    }
    deviations.sum += sum;
    deviations.squares += squares;
  }
  return deviations;
}

Deviations DeviationsOfDifference(const cv::Mat& one, const cv::Mat& other) {
  Deviations deviations;
  for (int row = 0; row < one.rows; ++row) {
    const auto* const left = one.ptr<unsigned char>(row);
    const auto* const right = other.ptr<unsigned char>(row);
    int sum = 0;
    int squares = 0;
    for (int i = 0; i < one.cols; ++i) {
      const int difference = left[i] - right[i];
      sum += difference;
      squares += difference * difference;
    }
    deviations.sum += sum;
    deviations.squares += squares;
  }
  return deviations;
}

bool Agrees(float residue) { return residue != Silent && residue <= MostResidue; }

/// The residue of the tile that has most of a tile's pixels.
float At(const cv::Mat& residues, const cv::Rect& tile, int side) {
  const int row = std::clamp((tile.y + side / 2) / side, 0, residues.rows - 1);
  const int column = std::clamp((tile.x + side / 2) / side, 0, residues.cols - 1);
  return residues.at<float>(row, column);
}

bool IsExact(const cv::Mat& one, const cv::Mat& other) {
  for (int row = 0; row < one.rows; ++row) {
    const auto* const pixels = one.ptr<unsigned char>(row);
    if (!std::equal(pixels, pixels + one.cols, other.ptr<unsigned char>(row))) {
      return false;
    }
  }
  return true;
}

}  // namespace

bool TolerantFinding::IsPlausible(bool isSupported) const {
  if (tilesFor < leastTiles || explained * 4 < tilesFor * double{MostResidue}) {
    return false;
  }
  if (motion == cv::Point() && 2 * innerFor < innerAgainst) {
    return false;
  }
  if (IsExact()) {
    return isSupported && tilesAgainst * 4 <= tilesFor;
  }
  return tilesFor < ManyTiles ? tilesFor >= 3 * tilesAgainst : tilesFor >= tilesAgainst;
}

bool TolerantFinding::HardlyContradicts() const {
  // Tiles that agree under (0, 0) as well count here: content that repeats itself does so.
  const double tiles = explained / double{MostResidue};
  return tiles >= leastTiles && tilesUnlike * 4 <= tiles;
}

bool TolerantFinding::Outclasses(const TolerantFinding& rival) const {
  return std::int64_t{rival.tilesAgainst} * tilesFor >
         std::int64_t{4} * (tilesAgainst + 1) * rival.tilesFor;
}

TolerantProof::TolerantProof(const cv::Mat& earlier, const cv::Mat& later)
    : earlier(earlier), later(later), tileSide(TileSide(later.size())) {
  double explained = 0;
  still = Residues({0, 0}, explained);
}

/// Whether a tile differs from what lies half a tile further on, along each axis of a motion.
bool TolerantProof::TellsOf(const cv::Rect& tile, const cv::Point& motion) const {
  const cv::Rect all({0, 0}, later.size());
  const double most = double{MostResidue} * DeviationsOf(later(tile)).Variance(tile.area());
  const auto differs = [&](const cv::Point& step) {
    const cv::Rect beside = ((tile + step) & all) == tile + step ? tile + step : tile - step;
    return (beside & all) != beside ||
           DeviationsOfDifference(later(tile), later(beside)).Variance(tile.area()) > most;
  };
  return (motion.y == 0 || differs({0, tileSide / 2})) &&
         (motion.x == 0 || differs({tileSide / 2, 0}));
}

float TolerantProof::ResidueOf(const cv::Rect& tile, const cv::Point& motion,
                               double& explained) const {
  const cv::Rect all({0, 0}, later.size());
  const cv::Mat one = later(tile);
  const double variance = std::max(DeviationsOf(one).Variance(tile.area()),
                                   DeviationsOf(earlier(tile - motion)).Variance(tile.area()));
  if (variance < LeastVariance) {
    return Silent;
  }
  const auto residueAt = [&](const cv::Rect& place) {
    return static_cast<float>(DeviationsOfDifference(one, earlier(place)).Variance(tile.area()) /
                              variance);
  };
  float least = residueAt(tile - motion);
  explained += std::max(0.0F, MostResidue - least);
  for (int jitter = 0; jitter < 9 && least > MostResidue; ++jitter) {
    const cv::Rect place = tile - motion + cv::Point(jitter % 3 - 1, jitter / 3 - 1);
    if ((place & all) == place) {
      least = std::min(least, residueAt(place));
    }
  }
  return least;
}

cv::Mat TolerantProof::Residues(const cv::Point& motion, double& explained) const {
  cv::Mat residues(later.rows / tileSide, later.cols / tileSide, CV_32FC1, cv::Scalar(Silent));
  const cv::Rect overlap = OverlapOf(later.size(), motion);
  for (int row = 0; row < residues.rows; ++row) {
    for (int column = 0; column < residues.cols; ++column) {
      const cv::Rect tile(column * tileSide, row * tileSide, tileSide, tileSide);
      if ((tile & overlap) == tile) {
        residues.at<float>(row, column) = ResidueOf(tile, motion, explained);
      }
    }
  }
  return residues;
}

TolerantFinding TolerantProof::Examine(const cv::Point& motion) const {
  TolerantFinding finding;
  finding.motion = motion;
  finding.leastTiles = LeastTiles * LargestTile / tileSide;
  finding.residues = Residues(motion, finding.explained);
  const cv::Point margin(still.cols / EdgeParts, still.rows / EdgeParts);
  const cv::Rect inner(margin, cv::Point(still.size()) - margin);
  for (int row = 0; row < still.rows; ++row) {
    for (int column = 0; column < still.cols; ++column) {
      const float residue = finding.residues.at<float>(row, column);
      const cv::Rect tile(column * tileSide, row * tileSide, tileSide, tileSide);
      const bool standsStill = motion != cv::Point() &&
                               (Agrees(still.at<float>(row, column)) ||
                                (residue != Silent && Agrees(At(still, tile - motion, tileSide))));
      finding.tilesUnlike += static_cast<int>(residue != Silent && !Agrees(residue));
      if (standsStill) {
        finding.residues.at<float>(row, column) = Silent;
      }
      if (residue == Silent || standsStill) {
        continue;
      }
      const bool isInner =
          row >= inner.y && row < inner.br().y && column >= inner.x && column < inner.br().x;
      (Agrees(residue) ? finding.innerFor : finding.innerAgainst) += static_cast<int>(isInner);
      if (Agrees(residue)) {
        ++finding.tilesFor;
        finding.tilesExact += static_cast<int>(IsExact(later(tile), earlier(tile - motion)));
        finding.tilesTelling += static_cast<int>(TellsOf(tile, motion));
      } else {
        ++finding.tilesAgainst;
      }
    }
  }
  return finding;
}

bool TolerantProof::Beats(const TolerantFinding& one, const TolerantFinding& other) {
  int wins = 0;
  int losses = 0;
  for (int row = 0; row < one.residues.rows; ++row) {
    for (int column = 0; column < one.residues.cols; ++column) {
      const float left = one.residues.at<float>(row, column);
      const float right = other.residues.at<float>(row, column);
      if (left != Silent && right != Silent) {
        wins += static_cast<int>(Agrees(left) && 2 * std::max(left, LeastResidue) < right);
        losses += static_cast<int>(Agrees(right) && 2 * std::max(right, LeastResidue) < left);
      }
    }
  }
  return wins >= LeastWin && wins >= 2 * losses;
}

}  // namespace ScrollingCapture
