#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>
#include <vector>

#include <fuzzer/FuzzedDataProvider.h>
#include <opencv2/core.hpp>

#include <VelScrollingCapture/core/Translation.h>

namespace ScrollingCapture::Fuzzing {

/// At least one row and one column.
inline cv::Size AnySize(FuzzedDataProvider& data, int longest) {
  const int width = data.ConsumeIntegralInRange(1, longest);
  return {width, data.ConsumeIntegralInRange(1, longest)};
}

/// A matrix filled with the input's own bytes, which are repeated to its end.
inline cv::Mat AnyPixels(FuzzedDataProvider& data, const cv::Size& size, int type) {
  cv::Mat image = cv::Mat::zeros(size, type);
  const size_t bytes = image.total() * image.elemSize();
  const auto pattern = data.ConsumeBytes<std::uint8_t>(
      data.ConsumeIntegralInRange<size_t>(0, std::min<size_t>(bytes, 4096)));
  for (size_t i = 0; i < bytes && !pattern.empty(); ++i) {
    image.data[i] = pattern[i % pattern.size()];
  }
  return image;
}

/// What a window shows that scrolls over a page, or else, about once in `times` calls, pixels of
/// its own.
inline cv::Mat AnyCaptureOf(FuzzedDataProvider& data, const cv::Mat& page, const cv::Size& size,
                            int times) {
  if (data.ConsumeIntegralInRange(0, times - 1) == 0) {
    return AnyPixels(data, size, page.type());
  }
  const int column = data.ConsumeIntegralInRange(0, page.cols - size.width);
  const int row = data.ConsumeIntegralInRange(0, page.rows - size.height);
  return page(cv::Rect({column, row}, size)).clone();
}

/// A number near the lengths that matter, or else any number at all.
inline int AnyCoordinate(FuzzedDataProvider& data, int length) {
  constexpr int Lowest = std::numeric_limits<int>::min();
  constexpr int Highest = std::numeric_limits<int>::max();
  switch (data.ConsumeIntegralInRange(0, 7)) {
    case 0:
      return data.ConsumeIntegral<int>();
    case 1:
      return data.PickValueInArray({Lowest, Lowest + 1, Highest - 1, Highest, 0, length, -length});
    default:
      return data.ConsumeIntegralInRange(-length - 2, length + 2);
  }
}

inline Translation AnyTranslation(FuzzedDataProvider& data, const cv::Size& capture) {
  const int rows = AnyCoordinate(data, capture.height);
  return {rows, AnyCoordinate(data, capture.width)};
}

}  // namespace ScrollingCapture::Fuzzing
