#include <optional>
#include <thread>
#include <utility>

#include <velscroll/stitch/StageClock.h>
#include <velscroll/stitch/StitchRun.h>
#include <velscroll/terminal/Failure.h>
#include <velscroll/terminal/HeldMessages.h>
#include <velscroll/terminal/Interruption.h>

#include <VelScrollingCapture/core/IStitcherListener.h>

namespace ScrollingCapture::Program {
namespace {

/// Shows the progress, passes an interruption on, and notes when the detection ended and why a
/// stitch failed.
class RunListener : public IStitcherListener {
 public:
  explicit RunListener(Console& console) : console(console) {}

  /// While translations are detected, the calls come from worker threads: the first one from the
  /// thread that called the stitcher tells that they are all found.
  bool ProgressCallback(int percent) override {
    if (!detectionSeconds && std::this_thread::get_id() == caller) {
      detectionSeconds = clock.Lap();
    }
    console.ShowProgress("Stitching", percent);
    return !InterruptionRequested();
  }

  void StitchingComplete(bool /*success*/) override {}

  bool StitchingError(StitcherErrorCodes code, bool /*fatal*/) override {
    error = code;
    return false;
  }

  std::optional<StitcherErrorCodes> Error() const { return error; }

  void FillTimes(Stitched& stitched) {
    stitched.detectionSeconds = detectionSeconds.value_or(0);
    stitched.composingSeconds = clock.Lap();
  }

 private:
  Console& console;
  const std::thread::id caller = std::this_thread::get_id();
  StageClock clock;
  std::optional<double> detectionSeconds;
  std::optional<StitcherErrorCodes> error;
};

[[noreturn]] void ExplainFailure(const RunListener& listener,
                                 const std::vector<std::string>& remarks) {
  StopIfInterrupted();
  if (listener.Error() == IStitcherListener::ImageProcessingFailed) {
    throw Failed("not enough memory for the stitched image; stitch fewer captures at a time");
  }
  throw Failed("the captures could not be stitched" +
               (remarks.empty() ? std::string() : ": " + remarks.front()));
}

}  // namespace

Stitched RunStitch(CaptureSession& session, Console& console) {
  Stitched stitched;
  RunListener listener(console);
  const HeldMessages messages;
  std::optional<SessionResult> result = session.Stitch(&listener);
  stitched.remarks = messages.Lines();
  if (!result) {
    ExplainFailure(listener, stitched.remarks);
  }
  listener.FillTimes(stitched);
  stitched.result = std::move(*result);
  return stitched;
}

}  // namespace ScrollingCapture::Program
