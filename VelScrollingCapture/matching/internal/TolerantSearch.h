#pragma once

#include <functional>
#include <optional>
#include <vector>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/core/ScrollOrientation.h>
#include <VelScrollingCapture/matching/internal/TolerantProof.h>

namespace ScrollingCapture {

/// A motion, and the others that explain the captures as well.
struct FoundMotion {
  cv::Point motion;
  std::vector<cv::Point> rivals;
  bool isExact;    ///< whether most of what agrees does so in every pixel
  bool isTelling;  ///< whether enough of what agrees would not agree anywhere near
};

/// Looks for the motion of captures that do not agree to the pixel.
class TolerantSearch {
 public:
  /// @param earlier,later grey captures (CV_8UC1), which must outlive this object
  /// @param isSupported   whether many anchors vote for a motion
  TolerantSearch(const cv::Mat& earlier, const cv::Mat& later, ScrollOrientation orientation,
                 std::function<bool(const cv::Point&)> isSupported);

  /// Tries the peaks of the correlation surface and the proposed motions; call it once.
  std::optional<FoundMotion> Run(const std::vector<cv::Point>& proposed);

 private:
  void TryPeriods();
  void TryNeighbours();
  void Try(const cv::Point& motion);
  const TolerantFinding& Best() const;

  const cv::Mat& earlier;
  const cv::Mat& later;
  const ScrollOrientation orientation;
  const std::function<bool(const cv::Point&)> isSupported;
  const TolerantProof proof;
  std::vector<TolerantFinding> plausible;
};

}  // namespace ScrollingCapture
