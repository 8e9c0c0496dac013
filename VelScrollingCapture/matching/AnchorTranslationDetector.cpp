#include <VelScrollingCapture/core/internal/Messages.h>
#include <VelScrollingCapture/matching/AnchorTranslationDetector.h>
#include <VelScrollingCapture/matching/PairMatcher.h>
#include <VelScrollingCapture/matching/SequenceMatcher.h>

namespace ScrollingCapture {

AnchorTranslationDetector::AnchorTranslationDetector(ScrollOrientation orientation,
                                                     bool expectConsistentTranslations,
                                                     unsigned int threadCount)
    : orientation(orientation),
      expectConsistentTranslations(expectConsistentTranslations),
      threadCount(threadCount) {}

Translation AnchorTranslationDetector::DetectTranslation(const cv::Mat& previous,
                                                         const cv::Mat& current) {
  return MatchPair(previous, current, {orientation, expectConsistentTranslations}).motion;
}

std::vector<Translation> AnchorTranslationDetector::DetectTranslation(IImageProvider& images,
                                                                      IStitcherListener* listener,
                                                                      int progressStart,
                                                                      int progressEnd) {
  captures.clear();
  if (images.Count() < 2) {
    TellError("Error: Not enough images in the IImageProvider.");
    return {};
  }
  captures = MatchSequence(
      images, listener,
      {{orientation, expectConsistentTranslations}, threadCount, progressStart, progressEnd});
  std::vector<Translation> translations;
  for (std::size_t i = 1; i < captures.size(); ++i) {
    translations.push_back(captures[i].join.motion);
  }
  return translations;
}

Translation AnchorTranslationDetector::DetectTranslationWithAlternative(const cv::Mat& previous,
                                                                        const cv::Mat& current,
                                                                        Translation& alternative) {
  const Join join = MatchPair(previous, current, {orientation, expectConsistentTranslations});
  alternative = join.alternatives.empty() ? join.motion : join.alternatives.front();
  return join.motion;
}

}  // namespace ScrollingCapture
