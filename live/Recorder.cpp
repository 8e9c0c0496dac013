#include <algorithm>
#include <cstring>
#include <thread>
#include <utility>

#include <live/Recorder.h>

namespace ScrollingCapture::Live {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds LongestWait(50);
constexpr milliseconds BetweenLooks(16);    // 60 times a second
constexpr milliseconds UntilAtRest(50);     // a few frames of a screen
constexpr milliseconds UntilScrolled(250);  // of quiet, after smooth scrolling
constexpr milliseconds UntilUnmoved(600);   // also where something moves by itself
constexpr milliseconds UntilStuck(10000);

bool AreEqual(const cv::Mat& left, const cv::Mat& right) {
  return left.size() == right.size() && left.isContinuous() && right.isContinuous() &&
         std::memcmp(left.data, right.data, left.total() * left.elemSize()) == 0;
}

}  // namespace

std::optional<std::string> RecordingEnd::NothingCaptured() const {
  if (status.captures > 0) {
    return std::nullopt;
  }
  const std::string& why = line.empty() ? status.hindrance : line;
  return "nothing was captured" + (why.empty() ? "" : ": " + why);
}

Recorder::Recorder(ICaptureSource& source, CaptureSession& session, IRecordingListener& listener,
                   const MatchingSettings& settings)
    : source(source),
      listener(listener),
      adding(session, [&listener](const cv::Mat& capture) { listener.CaptureKept(capture); }),
      selection(settings, [this](const cv::Mat& capture) { adding.Add(capture); }) {}

RecordingEnd Recorder::Run() {
  lastMotion = lastTurn = Clock::now();
  try {
    Loop();
  } catch (const CaptureEnded& ended) {
    End(ended.what());
  }
  if (!last.empty()) {
    selection.Finish();
    WaitForJoins();
  }
  end.status = Status();
  return end;
}

/// Nobody can end this but by an exception.
void Recorder::WaitForJoins() {
  while (!adding.FinishWithin(LongestWait)) {
    listener.GoOn(Status());
  }
}

void Recorder::Loop() {
  Look();
  while (!hasEnded && listener.GoOn(Status())) {
    if (source.WaitForChange(isUnsettled ? BetweenLooks : LongestWait)) {
      Look();
    } else if (isUnsettled && Clock::now() - lastChange >= UntilAtRest) {
      LookAgainAtRest();
    }
    if (autoScroll && MayTurnWheel()) {
      TurnWheel();
    }
  }
}

void Recorder::Look() {
  std::this_thread::sleep_until(lastLook + BetweenLooks);
  lastLook =
      std::max(lastLook + BetweenLooks, Clock::now() - BetweenLooks);  // late once, not for good
  Frame frame = source.Grab();
  hindrance = frame.hindrance;
  if (frame.pixels.empty() || AreEqual(frame.pixels, last)) {
    return;
  }
  last = frame.pixels;
  isUnsettled = true;
  lastChange = Clock::now();
  selection.Take(last);
  if (WayHasChanged()) {
    lastMotion = lastChange;
    movedSinceTurn = true;
  }
}

bool Recorder::WayHasChanged() {
  const Place before = std::exchange(lastPlace, selection.WhereNow());
  const std::size_t lostBefore = std::exchange(timesLost, selection.TimesLost());
  return lastPlace != before || timesLost != lostBefore;
}

/// What was drawn after the last look, and not announced, is seen now.
void Recorder::LookAgainAtRest() {
  const Clock::time_point before = lastChange;
  Look();
  if (lastChange == before) {
    selection.Settle();
    isUnsettled = false;
  }
}

bool Recorder::MayTurnWheel() const {
  const Clock::time_point now = Clock::now();
  const bool isQuiet = !isUnsettled && movedSinceTurn && now - lastChange >= UntilScrolled;
  return isQuiet || now - lastMotion >= UntilUnmoved;
}

void Recorder::TurnWheel() {
  selection.Settle();
  if (turned) {
    WaitForJoins();
    turn = autoScroll->Next(adding.Status());
  }
  if (!turn) {
    End(autoScroll->GaveUp() ? "one step of the wheel scrolls further than what the window shows"
                             : "");
    return;
  }
  hindrance = source.Scroll(turn->direction, turn->steps);
  turned = hindrance.empty();
  movedSinceTurn = false;
  lastMotion = Clock::now();
  if (turned) {
    lastTurn = lastMotion;
  } else if (lastMotion - lastTurn > UntilStuck) {
    End(hindrance);
  }
}

void Recorder::End(const std::string& line) {
  hasEnded = true;
  end.line = line;
}

RecordingStatus Recorder::Status() const {
  RecordingStatus status = adding.Status();
  status.lastStep = selection.LastStep();
  status.hindrance = hindrance;
  return status;
}

}  // namespace ScrollingCapture::Live
