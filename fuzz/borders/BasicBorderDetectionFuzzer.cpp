// Stitches small captures with borders by any translations, twice with the same object. A result is
// never smaller than the content; captures are cropped to one size or left as they were.

#include <memory>
#include <vector>

#include <fuzz/support/Expect.h>
#include <fuzz/support/Quiet.h>
#include <fuzz/support/RandomCaptures.h>
#include <testkit/ScriptedDetector.h>

#include <VelScrollingCapture/borders/BasicBorderDetection.h>
#include <VelScrollingCapture/stitching/BasicStitcher.h>
#include <VelScrollingCapture/storage/BasicImageProvider.h>

namespace ScrollingCapture::Fuzzing {
namespace {

constexpr int LongestSide = 20;

/// Captures that differ from the first in a block each, as content between borders does.
void AddCaptures(FuzzedDataProvider& data, const cv::Size& size, BasicImageProvider& captures) {
  const int count = data.ConsumeIntegralInRange(0, 4);
  const cv::Mat first = AnyPixels(data, size, CV_8UC4);
  for (int i = 0; i < count; ++i) {
    const bool fits = data.ConsumeIntegralInRange(0, 15) != 0;
    cv::Mat capture = fits ? first.clone() : AnyPixels(data, AnySize(data, LongestSide), CV_8UC4);
    const cv::Rect block(
        data.ConsumeIntegralInRange(0, size.width), data.ConsumeIntegralInRange(0, size.height),
        data.ConsumeIntegralInRange(0, size.width), data.ConsumeIntegralInRange(0, size.height));
    cv::Mat changed = capture(block & cv::Rect({}, capture.size()));
    AnyPixels(data, changed.size(), CV_8UC4).copyTo(changed);
    captures.Add(capture);
  }
}

void StitchOnce(FuzzedDataProvider& data, const cv::Size& size, IStitcher& stitcher,
                std::vector<Translation>& translations) {
  BasicImageProvider captures;
  AddCaptures(data, size, captures);
  translations.clear();
  for (size_t i = 1; i < captures.Count(); ++i) {
    translations.push_back(AnyTranslation(data, size));
  }
  cv::Mat result;
  if (!stitcher.Stitch(captures, result, nullptr, 0, 100, true)) {
    Expect(result.empty(), "a failure leaves the caller's matrix alone");
    return;
  }
  const cv::Size content = captures.GetImageAt(0)->size();
  Expect(result.rows >= content.height && result.cols >= content.width, "content fits the result");
  Expect(result.type() == CV_8UC4, "the result has the captures' type");
}

void StitchAny(FuzzedDataProvider& data) {
  const Quiet quiet;
  const cv::Size size = AnySize(data, LongestSide);
  const auto detector = std::make_shared<Testing::ScriptedDetector>(std::vector<Translation>{});
  BasicBorderDetection stitcher(std::make_shared<BasicStitcher>(detector),
                                data.ConsumeIntegralInRange(0U, 256U),
                                data.ConsumeIntegralInRange(0U, 9U));
  StitchOnce(data, size, stitcher, detector->translations);
  // The second stitch meets the borders that the first has left.
  StitchOnce(data, data.ConsumeBool() ? size : AnySize(data, LongestSide), stitcher,
             detector->translations);
}

}  // namespace
}  // namespace ScrollingCapture::Fuzzing

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, size_t count) {
  FuzzedDataProvider data(bytes, count);
  ScrollingCapture::Fuzzing::StitchAny(data);
  return 0;
}
