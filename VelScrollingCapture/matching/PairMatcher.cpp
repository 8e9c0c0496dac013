#include <utility>

#include <VelScrollingCapture/matching/PairMatcher.h>
#include <VelScrollingCapture/matching/internal/PairStudy.h>

namespace ScrollingCapture {

Join MatchPair(const cv::Mat& previous, const cv::Mat& current, const MatchingSettings& settings,
               const std::optional<Translation>& stepBefore) {
  RequireUsableCapture(previous);
  RequireUsableCapture(current);
  const CaptureAnchors earlier = FindAnchors(previous);
  const CaptureAnchors later = FindAnchors(current);
  RequireSameFormat(earlier, later);
  Join join = StudyPair({previous, earlier}, {current, later}, settings).join;
  return stepBefore ? PreferRepetition(std::move(join), {*stepBefore}) : join;
}

}  // namespace ScrollingCapture
