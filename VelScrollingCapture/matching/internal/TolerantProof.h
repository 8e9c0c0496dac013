#pragma once

#include <vector>

#include <opencv2/core.hpp>

namespace ScrollingCapture {

/// What the tiles of two captures say about one motion, noise aside.
struct TolerantFinding {
  cv::Point motion;
  cv::Mat residues;      ///< for each tile, how much of its variance is left unexplained (CV_32FC1)
  double explained = 0;  ///< the variance that is explained without jitter, summed up over tiles
  int tilesFor = 0;
  int tilesAgainst = 0;
  int tilesUnlike = 0;  ///< those that disagree, whether they stand still or not
  int innerFor = 0;     ///< of those, the tiles that are not near the capture's edge
  int innerAgainst = 0;
  int leastTiles = 0;  ///< how many tiles say anything at all
  int tilesExact = 0;  ///< of those for the motion, the tiles that agree in every pixel

  /// Of those for the motion, the tiles that do not agree with their own surroundings along it, as
  /// slopes of colour do.
  int tilesTelling = 0;

  /// Whether the motion may be the content's.
  /// @param isSupported whether many anchors vote for it as well
  bool IsPlausible(bool isSupported) const;

  /// Whether most of what agrees does so in every pixel.
  bool IsExact() const { return tilesExact * 2 > tilesFor; }

  /// Whether enough of what agrees would not agree anywhere near.
  bool IsTelling() const { return tilesTelling >= leastTiles; }

  /// Whether little speaks against the motion.
  bool HardlyContradicts() const;

  /// Whether a rival contradicts itself so much more that it is none.
  bool Outclasses(const TolerantFinding& rival) const;
};

/// Tries motions on two grey captures that need not agree to the pixel: a tile agrees where the
/// variance of the difference is a small part of its own variance, if need be with one pixel of
/// jitter.
class TolerantProof {
 public:
  /// @param earlier,later CV_8UC1, of equal size; they must outlive this object
  TolerantProof(const cv::Mat& earlier, const cv::Mat& later);

  TolerantFinding Examine(const cv::Point& motion) const;

  /// Whether one motion explains tiles far better than the other one, and hardly any worse.
  static bool Beats(const TolerantFinding& one, const TolerantFinding& other);

 private:
  cv::Mat Residues(const cv::Point& motion, double& explained) const;
  bool TellsOf(const cv::Rect& tile, const cv::Point& motion) const;
  float ResidueOf(const cv::Rect& tile, const cv::Point& motion, double& explained) const;

  const cv::Mat& earlier;
  const cv::Mat& later;
  const int tileSide;
  cv::Mat still;  ///< the residues under (0, 0)
};

}  // namespace ScrollingCapture
