#pragma once

#include <vector>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/core/Export.h>
#include <VelScrollingCapture/core/IImageProvider.h>
#include <VelScrollingCapture/core/IStitcherListener.h>
#include <VelScrollingCapture/core/Translation.h>

namespace ScrollingCapture {

/// Finds how far the content moved between captures.
class VEL_EXPORT ITranslationDetector {
 public:
  virtual ~ITranslationDetector() = default;

  /// The motion of the content from `previous` to `current`, two captures of equal size.
  virtual Translation DetectTranslation(const cv::Mat& previous, const cv::Mat& current) = 0;

  /// The motions between all consecutive captures of `images`, in capture order.
  ///
  /// Raises IStitcherListener::Cancelled when the listener asks to stop.
  /// @param images        the captures; GetImageAt may be called from several threads at once
  /// @param listener      hears of progress; may be null, and is not owned
  /// @param progressStart progress at the start of the detection
  /// @param progressEnd   progress at its end
  /// @return one element fewer than there are captures; empty on failure or cancellation
  virtual std::vector<Translation> DetectTranslation(IImageProvider& images,
                                                     IStitcherListener* listener, int progressStart,
                                                     int progressEnd) = 0;

  /// Like the pairwise DetectTranslation, and offers a second candidate.
  /// @param previous    the earlier capture
  /// @param current     the later capture
  /// @param alternative receives the second candidate, or the best one again
  /// @return the best motion
  virtual Translation DetectTranslationWithAlternative(const cv::Mat& previous,
                                                       const cv::Mat& current,
                                                       Translation& alternative) = 0;
};

}  // namespace ScrollingCapture
