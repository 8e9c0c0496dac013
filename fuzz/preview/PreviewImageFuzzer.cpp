// Adds any small captures to a preview with any canvas and place. Every answer is a documented one,
// and the canvas never shrinks.

#include <fuzz/support/Expect.h>
#include <fuzz/support/Quiet.h>
#include <fuzz/support/RandomCaptures.h>

#include <VelScrollingCapture/preview/PreviewImage.h>

namespace ScrollingCapture::Fuzzing {
namespace {

constexpr int LongestCanvasSide = 300;
constexpr int LongestSide = 40;

/// Hardly higher than wide: captures are shrunk, or here enlarged, to 250 columns, which takes long
/// for narrow ones.
cv::Mat AnyCapture(FuzzedDataProvider& data) {
  if (data.ConsumeIntegralInRange(0, 31) == 0) {
    return {};
  }
  const int width = data.ConsumeIntegralInRange(1, LongestSide);
  const cv::Size size(width, data.ConsumeIntegralInRange(1, width));
  return AnyPixels(data, size, data.ConsumeIntegralInRange(0, 31) == 0 ? CV_8UC1 : CV_8UC4);
}

void ExpectFits(PreviewImage& preview, const cv::Size& canvas, const cv::Size& box) {
  try {
    const cv::Size shown = preview.GetPreview(box.width, box.height).size();
    Expect(shown.width <= box.width && shown.height <= box.height, "what is shown fits the box");
    Expect(shown.width <= canvas.width && shown.height <= canvas.height, "nothing is enlarged");
  } catch (const cv::Exception&) {
    // The box leaves less than one pixel.
  }
}

void PreviewAny(FuzzedDataProvider& data) {
  const Quiet quiet;
  const int width = data.ConsumeIntegralInRange(0, LongestCanvasSide);
  cv::Size canvas(width, data.ConsumeIntegralInRange(0, LongestCanvasSide));
  const int row = AnyCoordinate(data, LongestCanvasSide);
  PreviewImage preview(canvas, row, AnyCoordinate(data, LongestCanvasSide));
  for (int captures = data.ConsumeIntegralInRange(0, 3); captures > 0; --captures) {
    const int answer = preview.AddCapture(AnyCapture(data));
    Expect(answer == 0 || answer == 1 || answer == 3, "the answer is a documented one");
    const cv::Mat picture = preview.GetPreview();
    Expect(picture.type() == CV_8UC4, "the canvas has colours and alpha");
    Expect(picture.rows >= canvas.height && picture.cols >= canvas.width,
           "the canvas does not shrink");
    canvas = picture.size();
  }
  const int boxWidth = AnyCoordinate(data, LongestCanvasSide);
  ExpectFits(preview, canvas, {boxWidth, AnyCoordinate(data, LongestCanvasSide)});
}

}  // namespace
}  // namespace ScrollingCapture::Fuzzing

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, size_t count) {
  FuzzedDataProvider data(bytes, count);
  ScrollingCapture::Fuzzing::PreviewAny(data);
  return 0;
}
