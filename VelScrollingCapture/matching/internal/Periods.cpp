#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>

#include <VelScrollingCapture/matching/internal/Periods.h>
#include <VelScrollingCapture/matching/internal/Vectors.h>

namespace ScrollingCapture {
namespace {

/// So many lines of pixels are looked at.
constexpr int Lines = 32;

constexpr int ShortestPeriod = 6;
constexpr int LongestPeriod = 256;

/// Grey levels by which noise changes from pixel to pixel.
constexpr int SmallChange = 4;

/// Below this part of the usual difference, content repeats itself.
constexpr double SmallDifference = 0.5;

/// Takes one channel of some columns.
cv::Mat SomeColumns(const cv::Mat& capture) {
  const int count = std::min(Lines, capture.cols);
  cv::Mat lines(capture.rows, count, CV_8UC1);
  const std::size_t channels = capture.elemSize();
  const std::size_t channel = channels / 3;  // green, where there is colour
  std::array<std::size_t, Lines> offsets{};
  for (int i = 0; i < count; ++i) {
    const auto column = static_cast<std::size_t>((2 * i + 1) * capture.cols / (2 * count));
    offsets[static_cast<std::size_t>(i)] = column * channels + channel;
  }
  for (int row = 0; row < lines.rows; ++row) {
    const auto* const pixels = capture.ptr<unsigned char>(row);
    std::transform(offsets.begin(), offsets.begin() + count, lines.ptr<unsigned char>(row),
                   [pixels](std::size_t offset) { return pixels[offset]; });
  }
  return lines;
}

cv::Mat SomeRows(const cv::Mat& capture) {
  const int count = std::min(Lines, capture.rows);
  cv::Mat lines(capture.cols, count, CV_8UC1);
  const std::size_t channels = capture.elemSize();
  const std::size_t channel = channels / 3;
  for (int i = 0; i < count; ++i) {
    const auto* const pixels = capture.ptr<unsigned char>((2 * i + 1) * capture.rows / (2 * count));
    for (int column = 0; column < lines.rows; ++column) {
      lines.at<unsigned char>(column, i) =
          pixels[static_cast<std::size_t>(column) * channels + channel];
    }
  }
  return lines;
}

[[gnu::always_inline]] inline std::uint32_t SumOfDifferences(const unsigned char* one,
                                                             const unsigned char* other,
                                                             std::size_t count) {
  std::uint32_t sum = 0;
  for (std::size_t i = 0; i < count; ++i) {
    sum += static_cast<std::uint32_t>(std::abs(int{one[i]} - int{other[i]}));
  }
  return sum;
}

std::uint32_t SumPlainly(const unsigned char* one, const unsigned char* other, std::size_t count) {
  return SumOfDifferences(one, other, count);
}

SCROLLING_CAPTURE_WIDE_TARGET std::uint32_t SumWidely(const unsigned char* one,
                                                      const unsigned char* other,
                                                      std::size_t count) {
  return SumOfDifferences(one, other, count);
}

/// The shortest distance between rows that is a clear minimum of their difference.
std::optional<int> PeriodOf(const cv::Mat& lines) {
  const int longest = std::min(lines.rows / 2, LongestPeriod);
  const auto sumOfDifferences = HasWideVectors() ? SumWidely : SumPlainly;
  std::vector<double> differences;
  double sum = 0;
  for (int distance = ShortestPeriod - 1; distance <= longest; ++distance) {
    const std::size_t count =
        static_cast<std::size_t>(lines.rows - distance) * static_cast<std::size_t>(lines.cols);
    differences.push_back(
        static_cast<double>(sumOfDifferences(lines.data, lines.ptr(distance), count)) /
        static_cast<double>(count));
    sum += differences.back();
  }
  for (std::size_t i = 1; i + 1 < differences.size(); ++i) {
    if (differences[i] < differences[i - 1] && differences[i] <= differences[i + 1] &&
        differences[i] * static_cast<double>(differences.size()) < SmallDifference * sum) {
      return static_cast<int>(i) + ShortestPeriod - 1;
    }
  }
  return std::nullopt;
}

}  // namespace

bool MayBeLossy(const cv::Mat& capture) {
  const cv::Mat lines = SomeColumns(capture);
  int changes = 0;
  int smallChanges = 0;
  for (int row = 1; row < lines.rows; ++row) {
    for (int i = 0; i < lines.cols; ++i) {
      const int change =
          std::abs(lines.at<unsigned char>(row, i) - lines.at<unsigned char>(row - 1, i));
      changes += static_cast<int>(change > 0);
      smallChanges += static_cast<int>(change > 0 && change <= SmallChange);
    }
  }
  return smallChanges * 3 > changes;
}

std::vector<cv::Point> PeriodsOf(const cv::Mat& capture) {
  std::vector<cv::Point> periods;
  if (const std::optional<int> down = PeriodOf(SomeColumns(capture))) {
    periods.emplace_back(0, *down);
  }
  if (const std::optional<int> across = PeriodOf(SomeRows(capture))) {
    periods.emplace_back(*across, 0);
  }
  return periods;
}

}  // namespace ScrollingCapture
