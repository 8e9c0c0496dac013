#pragma once

#include <memory>
#include <optional>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/core/Export.h>
#include <VelScrollingCapture/core/IImageProvider.h>
#include <VelScrollingCapture/core/IStitcherListener.h>
#include <VelScrollingCapture/session/CaptureOutcome.h>
#include <VelScrollingCapture/session/SessionResult.h>
#include <VelScrollingCapture/session/SessionSettings.h>

namespace ScrollingCapture {

/// One scrolling capture from its settings to its result: takes capture after capture, says of each
/// what has become of it, shows the picture as it grows, and stitches.
///
/// One thread at a time; sessions are independent of each other. Memory that runs out is
/// cv::Exception or std::bad_alloc: the session is then as it was before the call.
class VEL_EXPORT CaptureSession {
 public:
  /// Throws std::invalid_argument for settings that do not go together, and cv::Exception when the
  /// preview cannot be made.
  explicit CaptureSession(const SessionSettings& settings);

  CaptureSession(const CaptureSession&) = delete;
  CaptureSession& operator=(const CaptureSession&) = delete;

  /// Lets go of the captures and deletes their spill files, unless a result still needs them.
  ~CaptureSession();

  /// Adds the next capture, unless it repeats the last one or cannot be used.
  /// @param capture CV_8UC4: red, green, blue, premultiplied alpha. Its pixels are shared, and may
  /// be
  ///                written to by the stitch: hand over a copy that nobody else uses.
  CaptureOutcome Add(const cv::Mat& capture);

  /// The captures that were added.
  IImageProvider& Captures();

  /// The live preview as it stands, CV_8UC4. Empty when the settings ask for none, and when the box
  /// leaves less than one pixel of its shorter side.
  cv::Mat Preview();

  /// Stitches the captures that were added, on the calling thread, with progress from 0 to 100.
  ///
  /// With phase correlation seams are cut into the captures, so that a session stitches once.
  /// Throws SpillFileLost when a capture that waits in a file cannot be read back, and
  /// std::system_error when no thread can be started.
  /// @param listener hears of progress and errors and can stop the work, but is not told of
  ///                 completion; may be null
  /// @return nothing when the stitch failed or was stopped; the listener was told why
  std::optional<SessionResult> Stitch(IStitcherListener* listener);

 private:
  class State;
  std::unique_ptr<State> state;
};

}  // namespace ScrollingCapture
