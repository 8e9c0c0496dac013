#pragma once

#include <vector>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/core/Export.h>
#include <VelScrollingCapture/core/ITranslationDetector.h>
#include <VelScrollingCapture/core/ScrollOrientation.h>

namespace ScrollingCapture {

/// Finds translations by phase correlation (C. D. Kuglin and D. C. Hines, "The phase correlation
/// image alignment method", Proceedings of the IEEE International Conference on Cybernetics and
/// Society, 1975, pp. 163-165).
///
/// Captures are turned to grey and centred in a matrix that is twice as large in every considered
/// direction, so that offsets up to a whole capture stay distinguishable. Two things differ from
/// the textbook: grey values go into the transform without a window, and the real and the imaginary
/// part of the cross-power spectrum are each reduced to their sign instead of being divided by the
/// magnitude.
///
/// The object never changes after construction: any number of threads may use it at once.
///
/// Exceptions of OpenCV (captures of different size, fewer than three channels, empty captures, no
/// memory) pass to the caller of a pairwise detection. In a sequence detection they leave a worker
/// thread and end the process, whatever the caller catches. **Whoever calls it checks before that
/// no capture is empty, and that all have the same size and the same type, CV_8UC4.**
class VEL_EXPORT PhaseCorrelationTranslationDetector : public ITranslationDetector {
 public:
  /// @param orientation the directions to look in; offsets in any other direction are 0
  /// @param expectConsistentTranslations
  ///        whether sequence detection replaces a pair's translation by its second-best one when
  ///        that repeats the previous pair's
  /// @param threadCount
  ///        the most worker threads that sequence detection runs at once; at least 1, which is not
  ///        checked: with 0 sequence detection waits for ever. Hand over std::max(count, 1U) where
  ///        the count comes from elsewhere; std::thread::hardware_concurrency() may be 0.
  PhaseCorrelationTranslationDetector(ScrollOrientation orientation,
                                      bool expectConsistentTranslations, unsigned int threadCount);

  /// The motion of the content from `first` to `second`: the place of the highest value of their
  /// correlation surface, the first one in row-major order. (0, 0) with a message when there is no
  /// surface.
  Translation DetectTranslation(const cv::Mat& first, const cv::Mat& second) override;

  /// Detects each pair of consecutive captures on a thread of its own, at most the thread count at
  /// once, all joined on return.
  ///
  /// ProgressCallback comes from those threads, one at a time, in the order in which pairs finish,
  /// and once more from the calling thread with progressEnd. A false answer stops the detection;
  /// StitchingError(Cancelled, false) then follows from the calling thread. Pairs go through the
  /// virtual pairwise operations of this object. Fewer than two captures are refused with a
  /// message; std::system_error passes through when a thread cannot be started, and so does what
  /// the provider throws.
  std::vector<Translation> DetectTranslation(IImageProvider& images, IStitcherListener* listener,
                                             int progressStart, int progressEnd) override;

  /// Like the pairwise DetectTranslation; `alternative` receives the place of the second-highest
  /// value when that is above half of the highest, and the best one again otherwise. Without a
  /// surface `alternative` keeps its value.
  Translation DetectTranslationWithAlternative(const cv::Mat& first, const cv::Mat& second,
                                               Translation& alternative) override;

 protected:
  /// The correlation surface of two captures of equal size: CV_32FC1, not scaled, with offset
  /// (0, 0) at element (0, 0) and no quadrant swap.
  /// @param first   the earlier capture, 8-bit with the channels red, green, blue and perhaps alpha
  /// @param second  the later capture
  /// @param dftSize receives the transform size; untouched on failure
  /// @return the surface; empty on failure, with a message
  cv::Mat CalculateCorrelationMatrix(const cv::Mat& first, const cv::Mat& second,
                                     cv::Size& dftSize) const;

  /// The spectrum of a grey image, centred in zeros.
  /// @param source   CV_8UC1
  /// @param spectrum receives the full complex spectrum, CV_32FC2; untouched on failure
  /// @param dftSize  receives the transform size, in any case
  /// @return false when the transform gave nothing, with a message
  bool PerformDFT(const cv::Mat& source, cv::Mat& spectrum, cv::Size& dftSize) const;

  /// The unscaled real inverse transform.
  /// @param spectrum CV_32FC2
  /// @param surface  receives the result, CV_32FC1; untouched on failure
  /// @return false when the transform gave nothing, with a message
  bool PerformIDFT(const cv::Mat& spectrum, cv::Mat& surface) const;

  /// The translation that a maximum of the surface stands for: a peak in the first half of a
  /// considered dimension is a motion up or left (negative), one in the second half a motion down
  /// or right.
  /// @param peak    row and column of the maximum
  /// @param dftSize the transform size
  Translation ConvertFrequencyCoordinatesToTranslation(const int (&peak)[2],
                                                       const cv::Size& dftSize) const;

 private:
  ScrollOrientation orientation;
  bool expectConsistentTranslations;
  unsigned int threadCount;
};

}  // namespace ScrollingCapture
