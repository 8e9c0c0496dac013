#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include <live/ChangedStrip.h>
#include <opencv2/core.hpp>

#include <VelScrollingCapture/core/Translation.h>
#include <VelScrollingCapture/matching/MatchingSettings.h>

namespace ScrollingCapture::Live {

/// Follows how far the content has moved since a frame, in the strip that has changed most. Good
/// for choosing captures; what is chosen has to be proven.
class FrameTracker {
 public:
  explicit FrameTracker(const MatchingSettings& settings);

  /// Motions are told since this frame from now on.
  /// @param frame CV_8UC4; its pixels are shared
  void Follow(const cv::Mat& frame);

  /// How far the content has moved since the followed frame, along one axis. Quick enough for every
  /// frame that a screen shows, whatever comes out.
  /// @param frame of the same size
  /// @return nothing when that cannot be told
  std::optional<Translation> MotionTo(const cv::Mat& frame);

  /// The same along both axes at once, in the middle of the frames. Quick only when something comes
  /// out.
  std::optional<Translation> AnyMotionTo(const cv::Mat& frame) const;

 private:
  std::optional<int> LinesMovedBy(const cv::Rect& changed, const cv::Mat& frame);

  const MatchingSettings settings;
  StripAxis axis;  ///< along which motion was seen last
  cv::Mat followed;
  cv::Rect strip;                    ///< of which the lines are known
  std::vector<std::uint64_t> lines;  ///< of the followed frame
};

}  // namespace ScrollingCapture::Live
