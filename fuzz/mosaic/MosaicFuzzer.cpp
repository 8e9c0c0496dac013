// Composes small captures at any places. A mosaic is as large as its captures reach, shows at every
// pixel what some capture has there, and is the same whatever area is asked for; or it refuses with
// one of the documented exceptions.

#include <algorithm>
#include <stdexcept>
#include <vector>

#include <fuzz/support/Expect.h>
#include <fuzz/support/RandomCaptures.h>

#include <VelScrollingCapture/mosaic/Mosaic.h>
#include <VelScrollingCapture/storage/BasicImageProvider.h>

namespace ScrollingCapture::Fuzzing {
namespace {

constexpr int MostCaptures = 7;
constexpr int LongestSide = 40;
constexpr int LargestPicture = 400;

/// Captures near each other, mostly; parts of them are the same, so that there is agreement.
struct Input {
  explicit Input(FuzzedDataProvider& data) {
    const cv::Size size = AnySize(data, LongestSide);
    const int type = CV_8UC(data.ConsumeIntegralInRange(1, 4));
    const cv::Mat page = AnyPixels(data, {2 * LongestSide, 2 * LongestSide}, type);
    const int count = data.ConsumeIntegralInRange(0, MostCaptures);
    for (int i = 0; i < count; ++i) {
      const Place place = {AnyCoordinate(data, size.height), AnyCoordinate(data, size.width)};
      const cv::Rect area(((place.column % LongestSide) + LongestSide) % LongestSide,
                          ((place.row % LongestSide) + LongestSide) % LongestSide, size.width,
                          size.height);
      cv::Mat capture = page(area).clone();
      const cv::Rect changed = cv::Rect(data.ConsumeIntegralInRange(0, LongestSide),
                                        data.ConsumeIntegralInRange(0, LongestSide),
                                        data.ConsumeIntegralInRange(0, LongestSide),
                                        data.ConsumeIntegralInRange(0, LongestSide)) &
                               cv::Rect({}, size);
      capture(changed).setTo(cv::Scalar::all(data.ConsumeIntegral<std::uint8_t>()));
      captures.push_back(capture);
      places.push_back(place);
    }
  }

  std::vector<cv::Mat> captures;
  std::vector<Place> places;
};

void ExpectShown(const Mosaic& mosaic, const Input& input, const cv::Mat& picture) {
  for (int row = 0; row < picture.rows; ++row) {
    for (int column = 0; column < picture.cols; ++column) {
      const std::uint8_t* const pixel = picture.ptr(row, column);
      const auto capture = mosaic.CaptureAt({column, row});
      if (!capture) {
        Expect(std::all_of(pixel, pixel + picture.elemSize(),
                           [](std::uint8_t value) { return value == 0; }),
               "what no capture shows is transparent");
        continue;
      }
      const std::uint8_t* const shown = input.captures[*capture].ptr();
      const size_t bytes = input.captures[*capture].total() * picture.elemSize();
      bool isFound = false;
      for (size_t i = 0; i < bytes && !isFound; i += picture.elemSize()) {
        isFound = std::equal(pixel, pixel + picture.elemSize(), shown + i);
      }
      Expect(isFound, "a pixel is one of the capture's that shows it");
    }
  }
}

void ComposeAny(FuzzedDataProvider& data) {
  const Input input(data);
  BasicImageProvider provider;
  for (cv::Mat capture : input.captures) {
    provider.Add(capture);
  }
  MosaicSettings settings;
  settings.fixedParts = data.ConsumeBool() ? FixedParts::Once : FixedParts::Keep;
  settings.threadCount = data.ConsumeIntegralInRange(0U, 2U);
  try {
    const Mosaic mosaic(provider, input.places, settings);
    const cv::Size size = mosaic.Size();
    const cv::Rect whole(0, 0, std::min(size.width, LargestPicture),
                         std::min(size.height, LargestPicture));
    cv::Mat picture;
    mosaic.Render(whole, picture);
    ExpectShown(mosaic, input, picture);
    const cv::Rect area = cv::Rect(data.ConsumeIntegralInRange(0, LargestPicture),
                                   data.ConsumeIntegralInRange(0, LargestPicture),
                                   data.ConsumeIntegralInRange(0, LargestPicture),
                                   data.ConsumeIntegralInRange(0, LargestPicture)) &
                          whole;
    cv::Mat part;
    mosaic.Render(area, part);
    for (int row = 0; row < area.height; ++row) {
      Expect(std::equal(part.ptr(row), part.ptr(row) + part.cols * part.elemSize(),
                        picture.ptr(area.y + row, area.x)),
             "a part is equal to that of the whole");
    }
  } catch (const std::length_error&) {
    Expect(input.captures.size() > 1, "places that are too far apart are at least two");
  }
}

}  // namespace
}  // namespace ScrollingCapture::Fuzzing

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, size_t count) {
  FuzzedDataProvider data(bytes, count);
  ScrollingCapture::Fuzzing::ComposeAny(data);
  return 0;
}
