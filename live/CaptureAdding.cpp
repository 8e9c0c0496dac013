#include <utility>

#include <live/AreaAt.h>
#include <live/CaptureAdding.h>

namespace ScrollingCapture::Live {
namespace {

constexpr std::size_t MostWaiting = 16;
constexpr int FirstPart = 1;

}  // namespace

CaptureAdding::CaptureAdding(CaptureSession& session, HearOfCapture hear)
    : session(session), hear(std::move(hear)), worker([this] { Work(); }) {}

CaptureAdding::~CaptureAdding() {
  {
    const std::lock_guard<std::mutex> lock(mutex);
    isEnding = true;
  }
  changed.notify_all();
  worker.join();
}

void CaptureAdding::Add(const cv::Mat& capture) {
  std::unique_lock<std::mutex> lock(mutex);
  changed.wait(lock, [this] { return waiting.size() < MostWaiting || failure; });
  Rethrow();
  waiting.push_back(capture);
  changed.notify_all();
}

bool CaptureAdding::FinishWithin(std::chrono::milliseconds timeout) {
  std::unique_lock<std::mutex> lock(mutex);
  const bool isDone =
      changed.wait_for(lock, timeout, [this] { return waiting.empty() || failure; });
  Rethrow();
  return isDone;
}

RecordingStatus CaptureAdding::Status() const {
  const std::lock_guard<std::mutex> lock(mutex);
  RecordingStatus told = status;
  told.waiting = waiting.size();
  return told;
}

void CaptureAdding::Rethrow() {
  if (failure) {
    std::rethrow_exception(failure);
  }
}

void CaptureAdding::Work() {
  std::unique_lock<std::mutex> lock(mutex);
  for (;;) {
    changed.wait(lock, [this] { return isEnding || !waiting.empty(); });
    if (isEnding) {
      return;
    }
    const cv::Mat capture = waiting.front();
    lock.unlock();
    AddOne(capture);
    lock.lock();
    waiting.pop_front();
    changed.notify_all();
  }
}

void CaptureAdding::AddOne(const cv::Mat& capture) {
  try {
    const CaptureOutcome outcome = session.Add(capture);
    if (outcome.placed) {
      Note(capture, outcome);
      hear(capture);
    }
  } catch (...) {
    const std::lock_guard<std::mutex> lock(mutex);
    failure = std::current_exception();
  }
}

void CaptureAdding::Note(const cv::Mat& capture, const CaptureOutcome& outcome) {
  const std::lock_guard<std::mutex> lock(mutex);
  ++status.captures;
  status.doubtful += outcome.state == CaptureOutcome::State::Doubtful ? 1 : 0;
  MoveTo(*outcome.placed);
  seenInPart |= AreaAt(status.place, capture.size());
  status.tooFast = part != FirstPart;
  if (!status.tooFast) {
    status.seen |= seenInPart;
  }
}

/// Where the part is another one, the capture has begun it, or joins the part before to it: the
/// motion then tells where that one lies.
void CaptureAdding::MoveTo(const PlacedCapture& placed) {
  const Place before = std::exchange(status.place, placed.place);
  const int partBefore = std::exchange(part, placed.part);
  if (part < partBefore) {
    const Translation& motion = placed.join.motion;
    seenInPart += cv::Point(placed.place.column + motion.GetCols() - before.column,
                            placed.place.row + motion.GetRows() - before.row);
  } else if (part > partBefore) {
    seenInPart = {};
    status.lastJoined = partBefore == FirstPart ? before : status.lastJoined;
  }
}

}  // namespace ScrollingCapture::Live
