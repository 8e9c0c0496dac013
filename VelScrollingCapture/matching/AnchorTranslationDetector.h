#pragma once

#include <vector>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/core/Export.h>
#include <VelScrollingCapture/core/ITranslationDetector.h>
#include <VelScrollingCapture/core/ScrollOrientation.h>
#include <VelScrollingCapture/matching/CapturePlacer.h>

namespace ScrollingCapture {

/// Finds translations by anchors: patches chosen by their content, which vote for motions that are
/// then proven on the pixels. Says how sure each translation is.
///
/// Pairwise detections may be used by any number of threads at once; a sequence detection only by
/// one at a time, since it keeps its joins.
class VEL_EXPORT AnchorTranslationDetector : public ITranslationDetector {
 public:
  /// @param orientation the axes along which the content may move
  /// @param expectConsistentTranslations see MatchingSettings
  /// @param threadCount how many threads a sequence detection uses at once
  AnchorTranslationDetector(ScrollOrientation orientation, bool expectConsistentTranslations,
                            unsigned int threadCount);

  /// (0, 0) when the captures have nothing in common. Throws std::invalid_argument for captures of
  /// different sizes or types, and for pixels other than of 8 bits in 1, 3 or 4 channels.
  Translation DetectTranslation(const cv::Mat& previous, const cv::Mat& current) override;

  /// Places every capture against everything seen before, as MatchSequence does, which also tells
  /// how the listener is called and what is thrown. The translation of a capture that lies in
  /// another part than the one before is (0, 0); see Captures(). Fewer than two captures are
  /// refused with a message.
  std::vector<Translation> DetectTranslation(IImageProvider& images, IStitcherListener* listener,
                                             int progressStart, int progressEnd) override;

  /// Like the pairwise DetectTranslation. `alternative` receives the smallest of the other motions
  /// of a doubtful join, and the best one again otherwise.
  Translation DetectTranslationWithAlternative(const cv::Mat& previous, const cv::Mat& current,
                                               Translation& alternative) override;

  /// Places and joins of the last sequence detection, one element a capture; empty before the first
  /// one, and after one that was cancelled or failed.
  const std::vector<PlacedCapture>& Captures() const { return captures; }

 private:
  ScrollOrientation orientation;
  bool expectConsistentTranslations;
  unsigned int threadCount;
  std::vector<PlacedCapture> captures;
};

}  // namespace ScrollingCapture
