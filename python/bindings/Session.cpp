#include <new>
#include <optional>
#include <stdexcept>
#include <thread>
#include <utility>

#include <python/bindings/Remarks.h>
#include <python/bindings/Session.h>
#include <velscroll/terminal/Failure.h>

#include <VelScrollingCapture/core/IStitcherListener.h>

namespace ScrollingCapture::Python {
namespace {

using Program::BadInput;

/// Passes the progress on, and notes why a stitch failed and when its detection ended.
class StitchListener : public IStitcherListener {
 public:
  explicit StitchListener(const TellProgress& tell) : tell(tell) {}

  /// While translations are detected, the calls come from other threads.
  bool ProgressCallback(int percent) override {
    if (!detectionSeconds && std::this_thread::get_id() == stitching) {
      detectionSeconds = clock.Lap();
    }
    return tell(percent);
  }

  void StitchingComplete(bool /*success*/) override {}

  bool StitchingError(StitcherErrorCodes code, bool /*fatal*/) override {
    error = code;
    return false;
  }

  void FillTimes(Program::StageSeconds& seconds) {
    seconds.detection = detectionSeconds.value_or(0);
    seconds.composing = clock.Lap();
  }

  [[noreturn]] void ExplainFailure(const std::vector<std::string>& remarks) const {
    switch (error.value_or(NoTranslations)) {
      case Cancelled:
        throw Program::Cancelled();
      case ImageProcessingFailed:
        throw std::bad_alloc();
      default:
        throw std::runtime_error("the captures could not be stitched" +
                                 (remarks.empty() ? std::string() : ": " + remarks.front()));
    }
  }

 private:
  const TellProgress& tell;
  const std::thread::id stitching = std::this_thread::get_id();
  Program::StageClock clock;
  std::optional<double> detectionSeconds;
  std::optional<StitcherErrorCodes> error;
};

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
  StitchListener listener(tell);
  const Remarks remarks;
  const std::optional<SessionResult> result = session.Stitch(&listener);
  if (!result) {
    listener.ExplainFailure(remarks.Lines());
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
