#include <VelScrollingCapture/borders/BasicBorderDetection.h>
#include <VelScrollingCapture/detection/phase/PhaseCorrelationTranslationDetector.h>
#include <VelScrollingCapture/matching/AnchorTranslationDetector.h>
#include <VelScrollingCapture/stitching/BasicStitcher.h>
#include <VelScrollingCapture/stitching/StitcherFactory.h>

namespace ScrollingCapture {

std::shared_ptr<IStitcher> StitcherFactory::CreateBasicStitcher(ScrollOrientation orientation,
                                                                bool expectConsistentTranslations,
                                                                unsigned int threadCount) {
  return std::make_shared<BasicStitcher>(std::make_shared<PhaseCorrelationTranslationDetector>(
      orientation, expectConsistentTranslations, threadCount));
}

std::shared_ptr<IStitcher> StitcherFactory::CreateStitcherWithBasicBorderDetection(
    ScrollOrientation orientation, bool expectConsistentTranslations, unsigned int threadCount,
    unsigned int differenceThreshold, unsigned int neighborThreshold) {
  return std::make_shared<BasicBorderDetection>(
      CreateBasicStitcher(orientation, expectConsistentTranslations, threadCount),
      differenceThreshold, neighborThreshold);
}

std::shared_ptr<IStitcher> StitcherFactory::CreateStitcherWithExactJoins(
    ScrollOrientation orientation, bool expectConsistentTranslations, unsigned int threadCount) {
  return std::make_shared<BasicStitcher>(std::make_shared<AnchorTranslationDetector>(
      orientation, expectConsistentTranslations, threadCount));
}

}  // namespace ScrollingCapture
