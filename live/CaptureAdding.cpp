#include <utility>

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

void CaptureAdding::Finish() {
  std::unique_lock<std::mutex> lock(mutex);
  changed.wait(lock, [this] { return waiting.empty() || failure; });
  Rethrow();
}

RecordingStatus CaptureAdding::Status() const {
  const std::lock_guard<std::mutex> lock(mutex);
  return status;
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
  const bool wasJoined = !status.tooFast;
  const Place& place = outcome.placed->place;
  ++status.captures;
  status.doubtful += outcome.state == CaptureOutcome::State::Doubtful ? 1 : 0;
  status.tooFast = outcome.placed->part != FirstPart;
  if (!status.tooFast) {
    status.seen |= cv::Rect({place.column, place.row}, capture.size());
  } else if (wasJoined) {
    status.lastJoined = status.place;
  }
  status.place = place;
}

}  // namespace ScrollingCapture::Live
