#pragma once

#include <vector>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/core/Export.h>
#include <VelScrollingCapture/core/IImageProvider.h>
#include <VelScrollingCapture/core/IStitcherListener.h>
#include <VelScrollingCapture/core/Translation.h>

namespace ScrollingCapture {

/// Composes the captures of a provider into one image.
class VEL_EXPORT IStitcher {
 public:
  virtual ~IStitcher() = default;

  /// Stitches all captures of `images` into `result`.
  ///
  /// The captures' pixels may be written to: the part of a capture that a seam cuts off turns
  /// transparent in the provider as well. On failure `result` keeps what it held, also when
  /// an exception ends the work.
  /// @param images           the captures, in scroll order and of equal size
  /// @param result           receives the stitched image
  /// @param listener         hears of progress and errors; may be null, and is not owned
  /// @param progressStart    progress at the start of the work
  /// @param progressEnd      progress at its end
  /// @param notifyCompletion whether this call ends with StitchingComplete; a stitcher that wraps
  ///                         another passes false on, so that completion is announced once
  /// @return true on success
  virtual bool Stitch(IImageProvider& images, cv::Mat& result, IStitcherListener* listener,
                      int progressStart, int progressEnd, bool notifyCompletion) = 0;

  /// The translations that the last Stitch found: element k leads from capture k to capture k + 1.
  virtual std::vector<Translation> GetTranslations() const = 0;
};

}  // namespace ScrollingCapture
