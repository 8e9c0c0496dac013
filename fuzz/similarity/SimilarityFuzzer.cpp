// Compares any small captures: the very double that whole grey images give.

#include <fuzz/support/Expect.h>
#include <fuzz/support/RandomCaptures.h>
#include <testkit/references/ReferenceDetector.h>

#include <VelScrollingCapture/core/Utilities.h>

namespace ScrollingCapture::Fuzzing {
namespace {

constexpr int LongestSide = 70;

/// Like the other one but for some rows, or else with pixels of its own.
cv::Mat AnySecond(FuzzedDataProvider& data, const cv::Mat& first) {
  cv::Mat second = first.clone();
  const int start = data.ConsumeIntegralInRange(0, first.rows);
  cv::Mat changed = second.rowRange(start, data.ConsumeIntegralInRange(start, first.rows));
  AnyPixels(data, changed.size(), first.type()).copyTo(changed);
  return second;
}

void CompareAny(FuzzedDataProvider& data) {
  const int type = data.ConsumeIntegralInRange(0, 7) == 0 ? CV_8UC3 : CV_8UC4;
  const cv::Mat first = AnyPixels(data, AnySize(data, LongestSide), type);
  const cv::Mat second = AnySecond(data, first);
  // Views, so that reading on at the end of a row would change the outcome.
  const cv::Rect part(0, 0, data.ConsumeIntegralInRange(1, first.cols), first.rows);
  Expect(Utilities::CalculateSimilarity(first(part), second(part)) ==
             Testing::ReferenceSimilarity(first(part), second(part)),
         "the similarity is the reference's");
}

}  // namespace
}  // namespace ScrollingCapture::Fuzzing

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, size_t count) {
  FuzzedDataProvider data(bytes, count);
  ScrollingCapture::Fuzzing::CompareAny(data);
  return 0;
}
