#pragma once

#include <VelScrollingCapture/core/Export.h>

namespace ScrollingCapture {

/// The host's side of a final stitch: hears how far it is, and can stop it.
///
/// During translation detection the calls come from worker threads, one at a time; all others come
/// from the thread that called VelScrollingCapture::stitchAndReturnFinalImage. A delegate must not
/// throw: an exception that leaves a worker thread ends the process. One that is thrown on the
/// calling thread passes to the caller and stops the stitch; the captures can be stitched again
/// after VelScrollingCapture::setupStitcher.
class VEL_EXPORT ScrollingProgressDelegate {
 public:
  virtual ~ScrollingProgressDelegate() = default;

  /// Tells the progress of the stitch in percent, 0 to 100.
  virtual void setCurrentProgress(int progress) = 0;

  /// Asked after each setCurrentProgress.
  /// @return false to stop the stitch
  virtual bool continueScrolling() = 0;
};

}  // namespace ScrollingCapture
