#include <utility>

#include <VelScrollingCapture/frontend/ProgressListener.h>
#include <VelScrollingCapture/frontend/VelScrollingCapture.h>

namespace ScrollingCapture {

ProgressListener::ProgressListener(std::shared_ptr<VelScrollingCapture> captureObject)
    : captureObject(std::move(captureObject)) {}

bool ProgressListener::ProgressCallback(int progress) {
  return captureObject->setCurrentProgress(progress);
}

void ProgressListener::StitchingComplete(bool success) {
  // The call destroys this listener, and without a reference of its own perhaps its receiver, too.
  const std::shared_ptr<VelScrollingCapture> receiver = captureObject;
  receiver->stitchingComplete(success);
}

bool ProgressListener::StitchingError(StitcherErrorCodes /*code*/, bool /*fatal*/) {
  return captureObject->errorDuringStitching();
}

}  // namespace ScrollingCapture
