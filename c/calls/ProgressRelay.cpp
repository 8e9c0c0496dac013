#include <c/calls/Failures.h>
#include <c/calls/ProgressRelay.h>

namespace ScrollingCapture::C {

void ThrowStitchFailure(const ProgressRelay& relay) {
  if (relay.IsCancelled()) {
    throw CallFailure(VEL_CANCELLED, vel_result_text(VEL_CANCELLED));
  }
  if (relay.Error() == IStitcherListener::ImageProcessingFailed) {
    throw CallFailure(VEL_OUT_OF_MEMORY,
                      "not enough memory for the stitched image; stitch fewer captures at a time");
  }
  if (relay.Error() == IStitcherListener::BorderApplicationFailed) {
    throw CallFailure(VEL_STITCH_FAILED, "the borders cannot be laid around the stitched image");
  }
  throw CallFailure(VEL_STITCH_FAILED, vel_result_text(VEL_STITCH_FAILED));
}

}  // namespace ScrollingCapture::C
