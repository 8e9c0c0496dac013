#pragma once

#include <memory>

#include <VelScrollingCapture/core/Export.h>
#include <VelScrollingCapture/core/IStitcher.h>
#include <VelScrollingCapture/core/ScrollOrientation.h>

namespace ScrollingCapture {

/// Assembles stitchers, so that callers need not name the concrete classes.
class VEL_EXPORT StitcherFactory {
 public:
  StitcherFactory() = delete;

  /// A BasicStitcher with a PhaseCorrelationTranslationDetector; the caller is its only owner.
  /// @param orientation the scroll directions to look for
  /// @param expectConsistentTranslations whether a pair may be given its second-best translation
  ///        when that repeats the previous pair's
  /// @param threadCount the most detections that run at once; at least 1, not checked
  static std::shared_ptr<IStitcher> CreateBasicStitcher(ScrollOrientation orientation,
                                                        bool expectConsistentTranslations,
                                                        unsigned int threadCount);

  /// A BasicBorderDetection around a CreateBasicStitcher; the caller is its only owner.
  /// @param orientation as in CreateBasicStitcher
  /// @param expectConsistentTranslations as in CreateBasicStitcher
  /// @param threadCount as in CreateBasicStitcher
  /// @param differenceThreshold the grey-level difference, from 0 to 255, that a changed pixel
  ///        exceeds
  /// @param neighborThreshold the number of changed neighbours, from 0 to 8, that a changed pixel
  ///        must exceed to count as content
  static std::shared_ptr<IStitcher> CreateStitcherWithBasicBorderDetection(
      ScrollOrientation orientation, bool expectConsistentTranslations, unsigned int threadCount,
      unsigned int differenceThreshold, unsigned int neighborThreshold);

  /// A BasicStitcher with an AnchorTranslationDetector, whose motions are proven on the pixels; the
  /// caller is its only owner. A capture that nothing joins counts as one that has not moved.
  /// @param orientation the axes along which the content may move
  /// @param expectConsistentTranslations see MatchingSettings
  /// @param threadCount the most threads that match captures at once; 0 counts as 1
  static std::shared_ptr<IStitcher> CreateStitcherWithExactJoins(ScrollOrientation orientation,
                                                                 bool expectConsistentTranslations,
                                                                 unsigned int threadCount);
};

}  // namespace ScrollingCapture
