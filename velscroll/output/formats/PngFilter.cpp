#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include <velscroll/output/formats/DeflatedBlock.h>
#include <velscroll/output/formats/PngFilter.h>

namespace ScrollingCapture::Program {
namespace {

enum class Filter : unsigned char { None = 0, Paeth = 4 };

/// Which of left, above and left above is nearest to left + above - left above; written so that
/// compilers make vectors of it.
unsigned char Prediction(std::int16_t left, std::int16_t above, std::int16_t corner) {
  const auto fromLeft = static_cast<std::int16_t>(std::abs(above - corner));
  const auto fromAbove = static_cast<std::int16_t>(std::abs(left - corner));
  const auto fromCorner = static_cast<std::int16_t>(std::abs(left + above - 2 * corner));
  const std::int16_t vertical = fromAbove <= fromCorner ? above : corner;
  return static_cast<unsigned char>(fromLeft <= std::min(fromAbove, fromCorner) ? left : vertical);
}

void ApplyPaeth(const unsigned char* row, const unsigned char* above, size_t bytes,
                size_t pixelBytes, unsigned char* filtered) {
  for (size_t i = 0; i < pixelBytes; ++i) {
    filtered[i] = static_cast<unsigned char>(row[i] - above[i]);
  }
  for (size_t i = pixelBytes; i < bytes; ++i) {
    const unsigned char predicted =
        Prediction(row[i - pixelBytes], above[i], above[i - pixelBytes]);
    filtered[i] = static_cast<unsigned char>(row[i] - predicted);
  }
}

std::vector<unsigned char> Apply(Filter filter, const cv::Mat& above, const cv::Mat& rows) {
  const size_t pixelBytes = rows.elemSize();
  const size_t rowBytes = static_cast<size_t>(rows.cols) * pixelBytes;
  const std::vector<unsigned char> nothing(above.empty() ? rowBytes : 0);
  const unsigned char* previous = above.empty() ? nothing.data() : above.data;
  std::vector<unsigned char> filtered((rowBytes + 1) * static_cast<size_t>(rows.rows));
  unsigned char* to = filtered.data();
  for (int row = 0; row < rows.rows; ++row) {
    *to++ = static_cast<unsigned char>(filter);
    if (filter == Filter::Paeth) {
      ApplyPaeth(rows.ptr(row), previous, rowBytes, pixelBytes, to);
    } else {
      std::memcpy(to, rows.ptr(row), rowBytes);
    }
    previous = rows.ptr(row);
    to += rowBytes;
  }
  return filtered;
}

/// Tried on the rows in the middle.
Filter BestFilterFor(const cv::Mat& rows) {
  constexpr int SampleBytes = 32768;
  constexpr int FastLevel = 1;
  const auto rowBytes = static_cast<int>(rows.step);
  const int count = std::clamp(SampleBytes / rowBytes, 1, rows.rows);
  const int first = (rows.rows - count) / 2;
  const cv::Mat above = first > 0 ? rows.row(first - 1) : cv::Mat();
  const cv::Mat sample = rows.rowRange(first, first + count);
  const auto lengthWith = [&above, &sample](Filter filter) {
    return Deflate(Apply(filter, above, sample), FastLevel, true).bytes.size();
  };
  return lengthWith(Filter::Paeth) < lengthWith(Filter::None) ? Filter::Paeth : Filter::None;
}

}  // namespace

std::vector<unsigned char> FilterForPng(const cv::Mat& above, const cv::Mat& rows) {
  return Apply(BestFilterFor(rows), above, rows);
}

}  // namespace ScrollingCapture::Program
