#pragma once

#include <optional>
#include <vector>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/matching/internal/Comparison.h>
#include <VelScrollingCapture/matching/internal/StandingParts.h>
#include <VelScrollingCapture/matching/internal/Votes.h>

namespace ScrollingCapture {

/// What the pixels of two captures say about one motion.
struct Finding {
  cv::Point motion;
  Comparison comparison;
  int unique = 0;         ///< cells whose content is seen once in either capture, and moved so
  int agreeing = 0;       ///< cells with detail that agree, unique or not
  int contradicting = 0;  ///< cells that disagree without an excuse
  int standing = 0;       ///< cells that disagree since a part stands still there
  int witnesses = 0;      ///< cells that are seen to stand still

  /// Tiles where unique cells outweigh contradiction, where all agreeing cells with detail do, and
  /// where contradiction outweighs either.
  int tilesUnique = 0;
  int tilesAgreeing = 0;
  int tilesAgainstUnique = 0;
  int tilesAgainst = 0;

  /// Whether the motion may be the content's.
  /// @param isDominant whether hardly any anchor votes for another one
  bool IsPlausible(bool isDominant) const;

  /// Whether what is unique outweighs what disagrees.
  bool IsWitnessed() const { return tilesUnique >= tilesAgainstUnique; }

  /// Whether another motion leaves about as much unexplained.
  bool IsNoBetterThan(const Finding& rival) const;

  /// Whether what disagrees is small beside what agrees.
  bool IsClean() const;

  /// Whether hardly anything disagrees, so that the motion is possible where nothing is unique.
  bool IsPossible() const;
};

/// Tries motions on the pixels of two captures.
class ExactProof {
 public:
  /// @param earlier,later pixel keys; with the matches they must outlive this object
  ExactProof(const cv::Mat& earlier, const cv::Mat& later, const std::vector<Match>& matches)
      : earlier(earlier), later(later), matches(matches) {}

  Finding Examine(const cv::Point& motion) const;

  /// The same, when it is known what stands still.
  Finding Examine(const cv::Point& motion, const StandingParts& parts) const;

  /// Whether anything that is unique lies away from the upper and lower edge, where bars are.
  bool IsUniqueInside(const cv::Point& motion) const;

  /// Whether nothing moved: what agrees is not only bars at the window's edges.
  bool StandsStill() const;

  /// Whether `motion` explains clearly more than `rival` of what both might explain.
  bool Beats(const cv::Point& motion, const cv::Point& rival) const;

 private:
  const cv::Mat& Detailed() const;
  cv::Rect ContentFor(const cv::Point& motion) const;

  const cv::Mat& earlier;
  const cv::Mat& later;
  const std::vector<Match>& matches;

  // Once they are asked for:
  mutable cv::Mat detailed;  ///< the cells that have detail
  mutable std::optional<cv::Range> contentRows;
  mutable std::optional<cv::Range> contentColumns;
};

}  // namespace ScrollingCapture
