#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <exception>
#include <functional>
#include <mutex>
#include <thread>

#include <live/RecordingStatus.h>
#include <opencv2/core.hpp>

#include <VelScrollingCapture/session/CaptureSession.h>

namespace ScrollingCapture::Live {

/// Adds captures to a session on a thread of its own, in their order: to join what nothing joins
/// takes long, and must not keep anybody from looking on. At most some captures wait.
class CaptureAdding {
 public:
  /// Hears of every capture that the session has taken, on that thread.
  using HearOfCapture = std::function<void(const cv::Mat& capture)>;

  /// @param session is used by nobody else while captures wait to be added; must outlive this
  CaptureAdding(CaptureSession& session, HearOfCapture hear);
  CaptureAdding(const CaptureAdding&) = delete;
  CaptureAdding& operator=(const CaptureAdding&) = delete;
  ~CaptureAdding();

  /// Waits only when many captures wait already. Throws what adding an earlier one threw.
  /// @param capture CV_8UC4; its pixels are shared
  void Add(const cv::Mat& capture);

  /// Waits until all have been added, but not longer than that. Throws what adding one threw.
  /// @return whether all have been added
  bool FinishWithin(std::chrono::milliseconds timeout);

  /// How many captures the session has taken, where the last one lies, what they show, and whether
  /// they join. The rest of it is not told here.
  RecordingStatus Status() const;

 private:
  void Work();
  void AddOne(const cv::Mat& capture);
  void Note(const cv::Mat& capture, const CaptureOutcome& outcome);
  void MoveTo(const PlacedCapture& placed);
  void Rethrow();

  CaptureSession& session;
  const HearOfCapture hear;
  mutable std::mutex mutex;  ///< of what follows
  std::condition_variable changed;
  std::deque<cv::Mat> waiting;  ///< the first one is being added
  std::exception_ptr failure;
  bool isEnding = false;
  RecordingStatus status;
  int part = 1;         ///< of the last capture
  cv::Rect seenInPart;  ///< by the captures since its part began
  std::thread worker;
};

}  // namespace ScrollingCapture::Live
