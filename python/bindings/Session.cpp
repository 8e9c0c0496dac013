#include <new>
#include <optional>
#include <stdexcept>

#include <python/bindings/Remarks.h>
#include <python/bindings/Session.h>
#include <velscroll/stitch/StitchListener.h>
#include <velscroll/terminal/Failure.h>

namespace ScrollingCapture::Python {
namespace {

using Program::BadInput;

[[noreturn]] void ExplainFailure(const Program::StitchListener& listener,
                                 const std::vector<std::string>& remarks) {
  switch (listener.Error().value_or(IStitcherListener::NoTranslations)) {
    case IStitcherListener::Cancelled:
      throw Program::Cancelled();
    case IStitcherListener::ImageProcessingFailed:
      throw std::bad_alloc();
    default:
      throw std::runtime_error("the captures could not be stitched" +
                               (remarks.empty() ? std::string() : ": " + remarks.front()));
  }
}

}  // namespace

Session::Session(const SessionSettings& settings) : settings(settings), session(settings) {}

PreparedImage Session::Prepare(const Program::CaptureImage& image) const {
  return {session.Prepare(image.pixels), image.metadata};
}

CaptureOutcome Session::Add(const std::string& name, const PreparedImage& image) {
  const std::lock_guard<std::mutex> lock(*mutex);
  RequireOngoing();
  try {
    CaptureOutcome outcome = session.Add(image.capture);
    if (outcome.state == CaptureOutcome::State::Unusable) {
      throw BadInput(Program::Quoted(name) + " " + outcome.reason);
    }
    Remember(name, image, outcome.state == CaptureOutcome::State::Repeated);
    return outcome;
  } catch (const BadInput&) {
    throw;
  } catch (...) {
    // Nobody knows whether the capture is among the others now.
    end = "a capture could not be added; begin a new session";
    throw;
  }
}

cv::Mat Session::Preview() {
  const std::lock_guard<std::mutex> lock(*mutex);
  return session.Preview();
}

bool Session::ExceedsMemoryLimit() {
  const std::lock_guard<std::mutex> lock(*mutex);
  return session.ExceedsMemoryLimit();
}

Stitched Session::Stitch(const TellProgress& tell) {
  const std::lock_guard<std::mutex> lock(*mutex);
  RequireOngoing();
  if (files.empty()) {
    throw BadInput("there are no captures to stitch");
  }
  if (settings.engine == Engine::PhaseCorrelation) {
    end = "a session with phase correlation stitches once; begin a new one";
  }
  Program::StageSeconds seconds = {clock.Lap(), 0, 0, 0};
  Program::StitchListener listener(tell);
  const Remarks remarks;
  const std::optional<SessionResult> result = session.Stitch(&listener);
  if (!result) {
    ExplainFailure(listener, remarks.Lines());
  }
  listener.FillTimes(seconds);
  Stitched stitched = Describe(*result);
  stitched.content.remarks = remarks.Lines();
  stitched.content.seconds = seconds;
  return stitched;
}

void Session::RequireOngoing() const {
  if (!end.empty()) {
    throw std::logic_error(end);
  }
}

void Session::Remember(const std::string& name, const PreparedImage& image, bool repeats) {
  if (files.empty()) {
    metadata = image.metadata;
  }
  const cv::Mat& pixels = image.capture.pixels;
  files.push_back(
      {name, repeats ? std::make_optional(Program::JoinOfRepeat(kept, pixels)) : std::nullopt});
  if (!repeats) {
    kept = pixels;
  }
}

Stitched Session::Describe(const SessionResult& result) const {
  Stitched stitched;
  for (const auto& part : result.parts) {
    stitched.parts.push_back(std::make_shared<LockedPicture>(part, mutex));
  }
  stitched.content.settings = settings;
  stitched.content.borders = result.borders;
  stitched.content.captures = Program::DescribeCaptures(files, result.captures);
  stitched.content.warnings = Program::WarningsAbout(stitched.content.captures);
  stitched.metadata = metadata;
  return stitched;
}

}  // namespace ScrollingCapture::Python
