#pragma once

#include <memory>

#include <VelScrollingCapture/core/Export.h>
#include <VelScrollingCapture/core/IStitcherListener.h>

namespace ScrollingCapture {

class VelScrollingCapture;

/// Relays what a stitcher tells to a capture object, which it keeps alive for as long as it lives
/// itself.
class VEL_EXPORT ProgressListener : public IStitcherListener {
 public:
  /// @param captureObject who hears; not null
  explicit ProgressListener(std::shared_ptr<VelScrollingCapture> captureObject);

  /// Goes to VelScrollingCapture::setCurrentProgress and gives its answer.
  bool ProgressCallback(int progress) override;

  /// Goes to VelScrollingCapture::stitchingComplete, which destroys this listener when it is the
  /// capture object's own.
  void StitchingComplete(bool success) override;

  /// Gives the capture object's errorDuringStitching; code and fatal go no further.
  bool StitchingError(StitcherErrorCodes code, bool fatal) override;

 private:
  std::shared_ptr<VelScrollingCapture> captureObject;
};

}  // namespace ScrollingCapture
