#pragma once

#include <chrono>
#include <optional>
#include <string>

#include <live/AutoScroll.h>
#include <live/CaptureAdding.h>
#include <live/CaptureSelection.h>
#include <live/ICaptureSource.h>
#include <live/RecordingStatus.h>
#include <opencv2/core.hpp>

#include <VelScrollingCapture/session/CaptureSession.h>

namespace ScrollingCapture::Live {

/// Hears of a recording as it goes on.
class IRecordingListener {
 public:
  virtual ~IRecordingListener() = default;

  /// Called at least ten times a second, also while the last captures are joined. What it throws
  /// ends the recording, and passes to the caller of Run.
  /// @return false to end the recording
  virtual bool GoOn(const RecordingStatus& status) = 0;

  /// A capture has been added to the session. Called on the thread that adds them, so that the
  /// session's preview may be asked for.
  /// @param pixels CV_8UC4, shared with the session: not to be changed
  virtual void CaptureKept(const cv::Mat& pixels) = 0;
};

/// How a recording came to its end.
struct RecordingEnd {
  /// What the user should know of it: that the source was lost, or why the wheel could not scroll
  /// on. Empty when the listener asked for the end, or the end of the content or limit is reached.
  std::string line;
  RecordingStatus status;  ///< as it stood at the end

  /// Where nothing was captured: one line that says so, and why as far as that is known.
  std::optional<std::string> NothingCaptured() const;
};

/// Brings what a source shows into a session, while a user, or AutoScroll, scrolls.
///
/// It looks whenever the source has changed, at most 60 times a second, and again when nothing has
/// changed for a moment. What CaptureSelection chooses is joined on another thread meanwhile. No
/// queue of frames can grow: when a look takes long, fewer are taken.
class Recorder {
 public:
  /// All must outlive this.
  /// @param session without captures
  Recorder(ICaptureSource& source, CaptureSession& session, IRecordingListener& listener,
           const MatchingSettings& settings);

  /// From now on the recorder scrolls.
  void ScrollBy(const AutoScroll& scroll) { autoScroll.emplace(scroll); }

  /// Records until it is asked to end, or there is nothing more to see. What was captured so far is
  /// then in the session, whatever the reason. Throws what CaptureSession::Add throws.
  RecordingEnd Run();

 private:
  using Clock = std::chrono::steady_clock;

  void Loop();
  void WaitForJoins();
  void Look();
  void LookAgainAtRest();
  bool WayHasChanged();
  void TurnWheel();
  bool MayTurnWheel() const;
  void End(const std::string& line);
  RecordingStatus Status() const;

  ICaptureSource& source;
  IRecordingListener& listener;
  CaptureAdding adding;
  CaptureSelection selection;
  std::optional<AutoScroll> autoScroll;
  std::optional<AutoScroll::Turn> turn;  ///< the next or the last one
  bool turned = true;                    ///< whether that one was done
  std::string hindrance;
  cv::Mat last;              ///< the frame that was taken last
  bool isUnsettled = false;  ///< whether the last frame has not come to rest
  Clock::time_point lastLook;
  Clock::time_point lastChange;  ///< of anything
  Clock::time_point lastMotion;  ///< of the content, or of the wheel
  Clock::time_point lastTurn;    ///< of the wheel, as far as it succeeded
  bool movedSinceTurn = false;
  Place lastPlace;            ///< by which motion is noticed
  std::size_t timesLost = 0;  ///< the same
  RecordingEnd end;
  bool hasEnded = false;
};

}  // namespace ScrollingCapture::Live
