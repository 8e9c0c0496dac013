#pragma once

#include <optional>

#include <live/ChangedStrip.h>
#include <opencv2/core.hpp>

#include <VelScrollingCapture/core/Translation.h>
#include <VelScrollingCapture/matching/MatchingSettings.h>
#include <VelScrollingCapture/matching/PreparedCapture.h>

namespace ScrollingCapture::Live {

/// Follows how far the content has moved since a frame, quickly enough for every frame that a
/// screen shows: it matches the strip that has changed most, not the whole frames. Good for
/// choosing captures; what is chosen has to be proven.
class FrameTracker {
 public:
  explicit FrameTracker(const MatchingSettings& settings);

  /// Motions are told since this frame from now on.
  /// @param frame CV_8UC4; its pixels are shared
  void Follow(const cv::Mat& frame);

  /// How far the content has moved since the followed frame.
  /// @param frame of the same size
  /// @return nothing when one motion cannot be told from others, or nothing is in common
  std::optional<Translation> MotionTo(const cv::Mat& frame);

 private:
  std::optional<Translation> MotionWithin(const cv::Rect& changed, const cv::Mat& frame);

  const MatchingSettings settings;
  StripAxis axis;  ///< along which motion was seen last
  cv::Mat followed;
  cv::Rect strip;            ///< of which the followed frame is prepared
  PreparedCapture prepared;  ///< of the followed frame's strip
};

}  // namespace ScrollingCapture::Live
