#pragma once

#include <VelScrollingCapture/core/Export.h>

namespace ScrollingCapture {

/// The observer of a stitch: hears of progress, completion and errors, and can stop the work.
///
/// During translation detection the calls come from worker threads, one at a time; all others come
/// from the thread that called IStitcher::Stitch. A listener must not throw from ProgressCallback:
/// an exception that leaves a worker thread ends the process. One that is thrown on the thread that
/// called IStitcher::Stitch, by whichever operation, ends the stitch and passes to its caller; the
/// stitch may be tried again. The only further call is the StitchingComplete that was asked for.
class VEL_EXPORT IStitcherListener {
 public:
  /// Why a stitch failed.
  enum StitcherErrorCodes : int {
    NoImages = 1,                 ///< The provider holds no capture.
    NoTranslations = 2,           ///< There is no translation from which to size the result.
    ImageProcessingFailed = 3,    ///< OpenCV failed while the result was sized.
    Cancelled = 4,                ///< A progress call was answered with false.
    BorderApplicationFailed = 5,  ///< The borders that were found could not be laid again.
  };

  virtual ~IStitcherListener() = default;

  /// Tells the progress, an integer within the range that was given to the stitch.
  /// @return true to go on, false to cancel.
  virtual bool ProgressCallback(int progress) = 0;

  /// Tells once, at the end, whether the stitch succeeded, when its caller asked for that. A stitch
  /// that an exception ends has not: the listener hears so before the exception passes.
  virtual void StitchingComplete(bool success) = 0;

  /// Tells of an error.
  /// @param code  what went wrong
  /// @param fatal false with codes 1 to 4, true with code 5
  /// @return with BorderApplicationFailed, true lets the stitch count as a success (the result is
  ///         then the stitched image without borders); ignored with every other code.
  virtual bool StitchingError(StitcherErrorCodes code, bool fatal) = 0;
};

}  // namespace ScrollingCapture
