#pragma once

#include <optional>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/core/Translation.h>
#include <VelScrollingCapture/matching/PreparedCapture.h>

namespace ScrollingCapture {

/// A capture on its way into a session, with what is known of it beforehand.
struct IncomingCapture {
  /// CV_8UC4: red, green, blue, premultiplied alpha.
  cv::Mat pixels;

  /// What CaptureSession::Prepare found; without it, it is found when the capture is added.
  std::optional<PreparedCapture> prepared;

  /// How far the content moved since the capture before, where somebody prescribes that; right or
  /// wrong, the capture is placed by it, and its join tells what the pixels say. At most
  /// CapturePlacer::LongestPrescribed pixels along an axis.
  std::optional<Translation> motion;
};

}  // namespace ScrollingCapture
