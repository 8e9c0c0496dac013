#pragma once

#include <memory>
#include <optional>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/core/Export.h>
#include <VelScrollingCapture/core/IStitcherListener.h>
#include <VelScrollingCapture/session/CaptureOutcome.h>
#include <VelScrollingCapture/session/IncomingCapture.h>
#include <VelScrollingCapture/session/SessionResult.h>
#include <VelScrollingCapture/session/SessionSettings.h>

namespace ScrollingCapture {

/// One scrolling capture from its settings to its result: takes capture after capture, says of each
/// what has become of it, shows the picture as it grows, and stitches.
///
/// One thread at a time, Prepare aside; sessions are independent of each other. Where memory runs
/// out, cv::Exception or std::bad_alloc is thrown; the same capture may then be added again.
class VEL_EXPORT CaptureSession {
 public:
  /// Throws std::invalid_argument for settings that do not go together, and cv::Exception when the
  /// preview cannot be made.
  explicit CaptureSession(const SessionSettings& settings);

  CaptureSession(const CaptureSession&) = delete;
  CaptureSession& operator=(const CaptureSession&) = delete;

  /// Lets go of the captures, unless a result still needs them. Their spill files go with them.
  ~CaptureSession();

  /// Does what takes most of the time of adding a capture, with the same outcome. Any number of
  /// threads may do this at once, also while others use the session.
  IncomingCapture Prepare(const cv::Mat& capture) const;

  /// Adds the next capture, unless it repeats the last one or cannot be used.
  ///
  /// Throws SpillFileLost when an earlier capture, which waits in a file, cannot be read back, and
  /// std::invalid_argument for a motion beyond CapturePlacer::LongestPrescribed.
  /// @param capture its pixels are shared, and with phase correlation the stitch writes to them, so
  ///                it has to be a copy that nobody else uses
  CaptureOutcome Add(const IncomingCapture& capture);

  /// The same, unprepared.
  /// @param capture CV_8UC4: red, green, blue, premultiplied alpha
  CaptureOutcome Add(const cv::Mat& capture);

  /// Whether more captures are in memory than the settings allow, since they cannot be spilled: the
  /// disk is full, for one. Nothing is lost then.
  bool ExceedsMemoryLimit() const;

  /// The live preview as it stands, CV_8UC4. Empty when the settings ask for none, and when the box
  /// leaves less than one pixel of its shorter side.
  cv::Mat Preview() const;

  /// Stitches the captures that were added, on the calling thread, with progress from 0 to 100.
  ///
  /// With phase correlation seams are cut into the captures, which then are let go of: a session
  /// stitches once. Throws SpillFileLost when a capture that waits in a file cannot be read back,
  /// and std::system_error when no thread can be started.
  /// @param listener hears of progress and errors and can stop the work, but is not told of
  ///                 completion; may be null
  /// @return nothing when the stitch failed or was stopped; the listener was told why
  std::optional<SessionResult> Stitch(IStitcherListener* listener);

 private:
  class State;
  std::unique_ptr<State> state;
};

}  // namespace ScrollingCapture
