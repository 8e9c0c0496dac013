#pragma once

#include <memory>
#include <vector>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/core/Export.h>
#include <VelScrollingCapture/core/IStitcher.h>
#include <VelScrollingCapture/core/ITranslationDetector.h>
#include <VelScrollingCapture/mosaic/Mosaic.h>

namespace ScrollingCapture {

/// Composes captures as a Mosaic does, into one matrix.
///
/// Each capture sits at the place of the one before it minus their translation. The captures stay
/// as they are. Reports the detector's progress over the first nine tenths of the range, and the
/// composing over the rest. One stitcher may run several stitches, one at a time.
///
/// Every failure writes one line to the standard error stream. Captures that differ in size or type
/// fail with ImageProcessingFailed. Exceptions of the provider and of OpenCV, other than those
/// raised while the result is sized, pass to the caller of Stitch.
class VEL_EXPORT MosaicStitcher : public IStitcher {
 public:
  /// @param detector finds the translations; ownership is shared
  explicit MosaicStitcher(std::shared_ptr<ITranslationDetector> detector,
                          const MosaicSettings& settings = {});

  /// Stitches the captures as IStitcher tells. With a single capture the detector is not asked, and
  /// `result` is a copy of it.
  bool Stitch(IImageProvider& provider, cv::Mat& result, IStitcherListener* listener,
              int progressStart, int progressEnd, bool notifyCompletion) override;

  std::vector<Translation> GetTranslations() const override;

 private:
  std::shared_ptr<ITranslationDetector> detector;
  MosaicSettings settings;
  std::vector<Translation> translations;
};

}  // namespace ScrollingCapture
