// Lays captures onto blocks of any ranges, from and onto pixels at any address. What fits must come
// out like a copy through a mask, and nothing else may change the target.

#include <vector>

#include <fuzz/support/Expect.h>
#include <fuzz/support/Quiet.h>
#include <fuzz/support/RandomCaptures.h>
#include <testkit/MatrixTesting.h>
#include <testkit/references/ReferenceCropping.h>

#include <VelScrollingCapture/core/Utilities.h>

namespace ScrollingCapture::Fuzzing {
namespace {

using Testing::SameBits;

constexpr int LongestSide = 48;

/// Pixels that begin up to three bytes behind an address for words.
class AnyCapture {
 public:
  AnyCapture(FuzzedDataProvider& data, int longest) {
    const cv::Mat captured = AnyPixels(data, AnySize(data, longest), CV_8UC4);
    const auto offset = data.ConsumeIntegralInRange<size_t>(0, 3);
    bytes.resize(offset + captured.total() * captured.elemSize());
    pixels = cv::Mat(captured.size(), captured.type(), bytes.data() + offset);
    captured.copyTo(pixels);
  }

  cv::Mat& Pixels() { return pixels; }

 private:
  std::vector<uchar> bytes;
  cv::Mat pixels;
};

cv::Range AnyRange(FuzzedDataProvider& data, int length, int within) {
  const int start = AnyCoordinate(data, within);
  if (data.ConsumeIntegralInRange(0, 3) == 0) {
    return {start, AnyCoordinate(data, within)};
  }
  return {start, cv::saturate_cast<int>(std::int64_t{start} + length)};
}

bool Fits(const cv::Range& range, int length, int within) {
  return range.start >= 0 && range.end >= range.start && range.end <= within &&
         range.size() == length;
}

void BlendAny(FuzzedDataProvider& data) {
  const Quiet quiet;
  AnyCapture capture(data, LongestSide);
  AnyCapture canvas(data, 2 * LongestSide);
  const cv::Mat& image = capture.Pixels();
  cv::Mat& target = canvas.Pixels();
  const cv::Range rows = AnyRange(data, image.rows, target.rows);
  const cv::Range columns = AnyRange(data, image.cols, target.cols);
  cv::Mat expected = target.clone();
  Utilities::BlendImages(image, target, rows, columns);
  if (Fits(rows, image.rows, target.rows) && Fits(columns, image.cols, target.cols)) {
    Testing::ReferenceBlendImages(image, expected, rows, columns);
  }
  Expect(SameBits(target, expected), "what fits is laid through a mask, nothing else is");
}

}  // namespace
}  // namespace ScrollingCapture::Fuzzing

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, size_t count) {
  FuzzedDataProvider data(bytes, count);
  ScrollingCapture::Fuzzing::BlendAny(data);
  return 0;
}
