#pragma once

#include <opencv2/core.hpp>

#include <VelScrollingCapture/core/Export.h>
#include <VelScrollingCapture/core/IImageProvider.h>
#include <VelScrollingCapture/preview/PreviewImage.h>
#include <VelScrollingCapture/session/CaptureOutcome.h>

namespace ScrollingCapture {

/// The way of a capture into a session: refused when it cannot go with those before it, dropped
/// when it repeats the last one, or else added and shown to the preview.
///
/// It keeps no state of its own: the last capture that was added decides. That makes it fit hosts
/// that own captures and preview themselves, and replace them as they like. Not locked.
class VEL_EXPORT CaptureIntake {
 public:
  /// @param captures    where captures are added; must outlive this
  /// @param preview     is shown what is added; may be null, must outlive this
  /// @param keepRepeats whether captures that repeat the last one are added as well
  CaptureIntake(IImageProvider& captures, PreviewImage* preview, bool keepRepeats);

  /// Adds the next capture. A capture that the preview cannot place is added all the same.
  ///
  /// Captures of one run have one size and one type; the first capture is taken as it is. Throws
  /// cv::Exception when memory runs out; the capture is then not added.
  /// @param capture its pixels are shared
  CaptureOutcome Add(cv::Mat capture);

 private:
  IImageProvider& captures;
  PreviewImage* const preview;
  const bool keepRepeats;
};

/// Why a capture cannot be stitched whatever the others are like, to go on after "the capture";
/// empty when it can: it must have pixels, of 8 bits for red, green, blue and alpha each.
VEL_EXPORT std::string WhyUnusable(const cv::Mat& capture);

}  // namespace ScrollingCapture
