#include <optional>
#include <utility>

#include <velscroll/stitch/StitchListener.h>
#include <velscroll/stitch/StitchRun.h>
#include <velscroll/terminal/Failure.h>
#include <velscroll/terminal/HeldMessages.h>
#include <velscroll/terminal/Interruption.h>

namespace ScrollingCapture::Program {
namespace {

[[noreturn]] void ExplainFailure(const StitchListener& listener,
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
  StitchListener listener([&console](int percent) {
    console.ShowProgress("Stitching", percent);
    return !InterruptionRequested();
  });
  const HeldMessages messages;
  std::optional<SessionResult> result = session.Stitch(&listener);
  stitched.remarks = messages.Lines();
  if (!result) {
    ExplainFailure(listener, stitched.remarks);
  }
  listener.FillTimes(stitched.seconds);
  stitched.result = std::move(*result);
  return stitched;
}

}  // namespace ScrollingCapture::Program
