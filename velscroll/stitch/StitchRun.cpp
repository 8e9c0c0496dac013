#include <iostream>
#include <optional>
#include <thread>

#include <velscroll/stitch/StageClock.h>
#include <velscroll/stitch/StitchRun.h>
#include <velscroll/terminal/Failure.h>
#include <velscroll/terminal/Interruption.h>
#include <velscroll/terminal/StreamHold.h>

#include <VelScrollingCapture/core/IStitcherListener.h>

namespace ScrollingCapture::Program {
namespace {

/// Shows the progress, passes an interruption on, and notes when the detection ended and why a
/// stitch failed.
class RunListener : public IStitcherListener {
 public:
  explicit RunListener(ProgressBar& progress) : progress(progress) {}

  /// While translations are detected, the calls come from worker threads: the first one from the
  /// thread that called the stitcher tells that they are all found.
  bool ProgressCallback(int percent) override {
    if (!detectionSeconds && std::this_thread::get_id() == caller) {
      detectionSeconds = clock.Lap();
    }
    progress.Show("Stitching", percent);
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
  ProgressBar& progress;
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

Stitched RunStitch(IStitcher& stitcher, IImageProvider& captures, ProgressBar& progress) {
  Stitched stitched;
  RunListener listener(progress);
  bool success = false;
  {
    StreamHold standardError(std::cerr);
    StreamHold standardOutput(std::cout);
    success = stitcher.Stitch(captures, stitched.image, &listener, 0, 100, false);
    stitched.remarks = standardError.Lines();
    for (const std::string& line : standardOutput.Lines()) {
      stitched.remarks.push_back(line);
    }
  }
  if (!success) {
    ExplainFailure(listener, stitched.remarks);
  }
  listener.FillTimes(stitched);
  stitched.translations = stitcher.GetTranslations();
  return stitched;
}

}  // namespace ScrollingCapture::Program
