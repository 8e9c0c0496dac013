// Cuts captures by any translations and points. What the plain drawing can do must come out the
// same; anything else must leave the image as it was, or change pixels of its own only.

#include <cstdlib>

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

bool IsInside(const cv::Mat& image, const cv::Point& point) {
  return cv::Rect(0, 0, image.cols, image.rows).contains(point);
}

cv::Point AnyPoint(FuzzedDataProvider& data, const cv::Size& size) {
  const int x = AnyCoordinate(data, size.width);
  return {x, AnyCoordinate(data, size.height)};
}

void Clip(FuzzedDataProvider& data, cv::Mat& image) {
  cv::Mat expected = image.clone();
  const cv::Point first = AnyPoint(data, image.size());
  const cv::Point second = AnyPoint(data, image.size());
  const bool towardsOrigin = data.ConsumeBool();
  Utilities::ClipCorner(image, first, second, towardsOrigin);
  if (IsInside(expected, first) && IsInside(expected, second)) {
    Testing::ReferenceClipCorner(expected, first, second, towardsOrigin);
  }
  Expect(SameBits(image, expected), "a corner is clipped like one drawn line by line");
}

/// Whether there is something left of the capture before, so that there is a seam to draw.
bool Overlaps(const Translation& translation, const cv::Size& size) {
  return std::abs(std::int64_t{translation.GetRows()}) < size.height &&
         std::abs(std::int64_t{translation.GetCols()}) < size.width;
}

void Crop(FuzzedDataProvider& data, cv::Mat& image) {
  const Translation translation = AnyTranslation(data, image.size());
  if (data.ConsumeIntegralInRange(0, 3) == 0) {
    const cv::Rect anything(AnyPoint(data, image.size()), cv::Size(AnyPoint(data, image.size())));
    Utilities::CropCaptureImage(image, translation, anything);
    return;
  }
  const cv::Rect captureSize({}, image.size());
  cv::Mat expected = image.clone();
  Utilities::CropCaptureImage(image, translation, captureSize);
  if (Overlaps(translation, image.size())) {
    Testing::ReferenceCropCaptureImage(expected, translation, captureSize);
    Expect(SameBits(image, expected), "a capture is cropped like one drawn line by line");
  }
}

void ClearLines(FuzzedDataProvider& data, cv::Mat& image) {
  const cv::Point start = AnyPoint(data, image.size());
  const bool towardsOrigin = data.ConsumeBool();
  const bool isInside = IsInside(image, start);
  cv::Mat expected = image.clone();
  if (data.ConsumeBool()) {
    Utilities::MakeRowTransparent(image, start, towardsOrigin);
    if (isInside) {
      Testing::ReferenceMakeRowTransparent(expected, start, towardsOrigin);
    }
  } else {
    Utilities::MakeColumnTransparent(image, start, towardsOrigin);
    if (isInside) {
      Testing::ReferenceMakeColumnTransparent(expected, start, towardsOrigin);
    }
  }
  Expect(!isInside || SameBits(image, expected), "lines are cleared like lines that are drawn");
}

void TryAny(FuzzedDataProvider& data) {
  const Quiet quiet;
  // A view, so that a pixel beside the image is no pixel of it.
  const cv::Size size = AnySize(data, LongestSide);
  const cv::Mat whole(size.height + 2, size.width + 2, CV_8UC4, cv::Scalar::all(77));
  cv::Mat image = whole(cv::Rect({1, 1}, size));
  AnyPixels(data, size, CV_8UC4).copyTo(image);

  switch (data.ConsumeIntegralInRange(0, 2)) {
    case 0:
      Clip(data, image);
      break;
    case 1:
      Crop(data, image);
      break;
    default:
      ClearLines(data, image);
  }

  image.setTo(cv::Scalar::all(77));
  const cv::Mat untouched(whole.size(), CV_8UC4, cv::Scalar::all(77));
  Expect(SameBits(whole, untouched), "nothing is written beside the image");
}

}  // namespace
}  // namespace ScrollingCapture::Fuzzing

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, size_t count) {
  FuzzedDataProvider data(bytes, count);
  ScrollingCapture::Fuzzing::TryAny(data);
  return 0;
}
