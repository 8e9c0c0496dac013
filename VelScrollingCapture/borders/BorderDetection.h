#pragma once

#include <vector>

#include <VelScrollingCapture/borders/StitchingModifier.h>
#include <VelScrollingCapture/core/Export.h>

namespace ScrollingCapture {

/// Cuts the fixed borders off the captures, has them stitched, and lays the borders around the
/// result. How borders are found and laid is left to derived classes.
///
/// One object stitches one sequence at a time.
class VEL_EXPORT BorderDetection : public StitchingModifier {
 public:
  using StitchingModifier::StitchingModifier;

  /// Stitches the captures as IStitcher tells.
  ///
  /// Captures without fixed borders are stitched as they are. Where borders are found, the provider
  /// holds the cropped captures afterwards, whether or not the stitch succeeds.
  ///
  /// When the borders cannot be laid around the stitched content, the listener is told
  /// IStitcherListener::BorderApplicationFailed and its answer becomes the outcome; `result` then
  /// holds the content without borders. Without a listener the outcome is false.
  ///
  /// The wrapped stitcher reports all progress. Every failure writes one line to the standard error
  /// stream.
  bool Stitch(IImageProvider& images, cv::Mat& result, IStitcherListener* listener,
              int progressStart, int progressEnd, bool notifyCompletion) override;

  /// The wrapped stitcher's translations; measured on the cropped captures if borders were found.
  std::vector<Translation> GetTranslations() const override;

 protected:
  /// Finds and keeps the fixed borders of the captures, and crops the captures to what is inside.
  /// @return whether there are borders to lay; if not, the captures are as they were
  virtual bool ExtractBorders(IImageProvider& images) = 0;

  /// Lays the kept borders around the stitched content.
  /// @param image the content, and on success the bordered image
  /// @return false when that failed; `image` is then as it was
  virtual bool ApplyBorders(cv::Mat& image) = 0;
};

}  // namespace ScrollingCapture
