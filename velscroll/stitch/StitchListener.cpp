#include <utility>

#include <velscroll/stitch/StitchListener.h>

namespace ScrollingCapture::Program {

StitchListener::StitchListener(std::function<bool(int percent)> tellProgress)
    : tell(std::move(tellProgress)) {}

/// While translations are detected, the calls come from worker threads: the first one from the
/// thread that called the stitcher tells that they are all found.
bool StitchListener::ProgressCallback(int percent) {
  if (!detectionSeconds && std::this_thread::get_id() == caller) {
    detectionSeconds = clock.Lap();
  }
  return tell(percent);
}

void StitchListener::StitchingComplete(bool /*success*/) {}

bool StitchListener::StitchingError(StitcherErrorCodes code, bool /*fatal*/) {
  error = code;
  return false;
}

void StitchListener::FillTimes(StageSeconds& seconds) {
  seconds.detection = detectionSeconds.value_or(0);
  seconds.composing = clock.Lap();
}

}  // namespace ScrollingCapture::Program
