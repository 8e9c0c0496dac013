// Looks for content in any difference image from any ranges on: the same boundaries, answers and
// messages as those of the search pixel by pixel.

#include <iostream>
#include <limits>
#include <string>

#include <fuzz/support/Expect.h>
#include <fuzz/support/RandomCaptures.h>
#include <testkit/OpenBorderDetection.h>
#include <testkit/StreamCapture.h>
#include <testkit/references/ReferenceContentBox.h>

namespace ScrollingCapture::Fuzzing {
namespace {

constexpr int LongestSide = 300;
constexpr int MostPixels = 2000;

struct Outcome {
  bool found;
  cv::Range rows;
  cv::Range columns;
  std::string messages;
};

template <typename Search>
Outcome OutcomeOf(Search search, cv::Range rows, cv::Range columns) {
  const Testing::StreamCapture errors(std::cerr);
  const bool found = search(rows, columns);
  return {found, rows, columns, errors.Text()};
}

void ExpectSame(const Outcome& found, const Outcome& expected) {
  Expect(found.found == expected.found, "the answer is the reference's");
  Expect(found.rows == expected.rows && found.columns == expected.columns,
         "the boundaries are the reference's");
  Expect(found.messages == expected.messages, "the messages are the reference's");
}

unsigned int AnyThreshold(FuzzedDataProvider& data, unsigned int largestUseful) {
  return data.ConsumeIntegralInRange(0, 7) == 0
             ? data.ConsumeIntegral<unsigned int>()
             : data.ConsumeIntegralInRange(0U, largestUseful + 1);
}

cv::Range AnyRange(FuzzedDataProvider& data, int length) {
  if (data.ConsumeBool()) {
    return {length, 0};
  }
  const int start = AnyCoordinate(data, length);
  return {start, AnyCoordinate(data, length)};
}

void SearchAny(FuzzedDataProvider& data) {
  const int width = data.ConsumeIntegralInRange(1, LongestSide);
  const cv::Size size(width, data.ConsumeIntegralInRange(1, std::max(MostPixels / width, 1)));
  const unsigned int differenceThreshold = AnyThreshold(data, 255);
  const unsigned int neighborThreshold = AnyThreshold(data, 8);
  const cv::Range rows = AnyRange(data, size.height);
  const cv::Range columns = AnyRange(data, size.width);
  // A view, so that what lies beside the image would be taken for neighbours.
  cv::Mat whole(size.height + 2, size.width + 2, CV_8UC1, cv::Scalar(255));
  cv::Mat difference = whole(cv::Rect({1, 1}, size));
  AnyPixels(data, size, CV_8UC1).copyTo(difference);

  const Testing::ReferenceContentBox reference(differenceThreshold, neighborThreshold);
  Testing::OpenBorderDetection detection(differenceThreshold, neighborThreshold);
  const auto topAndLeft = [&difference](auto& search) {
    return [&](cv::Range& r, cv::Range& c) {
      return search.FindTopAndLeftContentBoundary(difference, r, c);
    };
  };
  const auto bottomAndRight = [&difference](auto& search) {
    return [&](cv::Range& r, cv::Range& c) {
      return search.FindBottomAndRightContentBoundary(difference, r, c);
    };
  };
  ExpectSame(OutcomeOf(topAndLeft(detection), rows, columns),
             OutcomeOf(topAndLeft(reference), rows, columns));
  ExpectSame(OutcomeOf(bottomAndRight(detection), rows, columns),
             OutcomeOf(bottomAndRight(reference), rows, columns));
}

}  // namespace
}  // namespace ScrollingCapture::Fuzzing

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, size_t count) {
  FuzzedDataProvider data(bytes, count);
  ScrollingCapture::Fuzzing::SearchAny(data);
  return 0;
}
