#include <VelScrollingCapture/core/Utilities.h>
#include <VelScrollingCapture/similarity/RepeatFilter.h>

namespace ScrollingCapture {

bool RepeatsLastCapture(IImageProvider& captures, const cv::Mat& capture) {
  if (captures.Count() == 0) {
    return false;
  }
  const double similarity = Utilities::CalculateSimilarity(*captures.GetLastImage(), capture);
  // Written so that a similarity that is not a number counts as a repeat.
  return !(static_cast<double>(RepeatSimilarity) > similarity);
}

}  // namespace ScrollingCapture
