#include <cstdint>
#include <cstring>

#include <VelScrollingCapture/core/Utilities.h>
#include <VelScrollingCapture/core/internal/Messages.h>

namespace ScrollingCapture {
namespace {

constexpr int AlphaChannel = 3;

std::int64_t Length(const cv::Range& range) {
  return std::int64_t{range.end} - std::int64_t{range.start};
}

/// The four bytes of a pixel as one word, which compilers turn into vector code.
using PixelWord = std::uint32_t;

/// The word at `index`, which may begin at any address.
PixelWord WordAt(const uchar* pixels, int index) {
  PixelWord word = 0;
  std::memcpy(&word, pixels + sizeof(word) * static_cast<size_t>(index), sizeof(word));
  return word;
}

void SetWordAt(uchar* pixels, int index, PixelWord word) {
  std::memcpy(pixels + sizeof(word) * static_cast<size_t>(index), &word, sizeof(word));
}

/// Rows are mostly wholly visible or wholly transparent, which is worth finding out first.
void BlendRow(const uchar* source, uchar* target, int count) {
  const PixelWord alphaBits = WordAt(cv::Vec4b(0, 0, 0, 255).val, 0);
  int visible = 0;
  for (int i = 0; i < count; ++i) {
    visible += static_cast<int>((WordAt(source, i) & alphaBits) != 0);
  }
  if (visible == count) {
    std::memmove(target, source, sizeof(PixelWord) * static_cast<size_t>(count));
  } else if (visible > 0) {
    for (int i = 0; i < count; ++i) {
      const PixelWord word = WordAt(source, i);
      SetWordAt(target, i, (word & alphaBits) != 0 ? word : WordAt(target, i));
    }
  }
}

/// Any other pixel type: OpenCV decides what can be copied, and throws where alpha is no mask.
void BlendThroughMask(const cv::Mat& source, cv::Mat& target, const cv::Range& targetRows,
                      const cv::Range& targetColumns) {
  cv::Mat alpha;
  cv::extractChannel(source, alpha, AlphaChannel);
  cv::Mat block(target, targetRows, targetColumns);
  source.copyTo(block, alpha);
}

}  // namespace

void Utilities::BlendImages(const cv::Mat& source, cv::Mat& target, const cv::Range& targetRows,
                            const cv::Range& targetColumns) {
  if (Length(targetRows) != source.rows || Length(targetColumns) != source.cols) {
    TellErrorWithoutFlush(
        "The Ranges provided must be the same width and heigh as the source image");
    return;
  }
  if (targetRows.start < 0 || targetColumns.start < 0 || targetRows.end > target.rows ||
      targetColumns.end > target.cols) {
    TellErrorWithoutFlush("The Ranges provided must be within the bounds of the target image");
    return;
  }
  if (source.type() != CV_8UC4 || target.type() != CV_8UC4) {
    BlendThroughMask(source, target, targetRows, targetColumns);
    return;
  }
  for (int row = 0; row < source.rows; ++row) {
    BlendRow(source.ptr(row), target.ptr(targetRows.start + row, targetColumns.start), source.cols);
  }
}

}  // namespace ScrollingCapture
