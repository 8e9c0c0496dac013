#include <algorithm>
#include <cstring>
#include <filesystem>

#include <velscroll/output/Pieces.h>
#include <velscroll/output/Strips.h>
#include <velscroll/terminal/Interruption.h>

namespace ScrollingCapture::Program {
namespace {

namespace fs = std::filesystem;

bool IsOfOneColour(const cv::Mat& row) {
  // Equal to itself, moved by a pixel.
  const size_t bytes = (static_cast<size_t>(row.cols) - 1) * row.elemSize();
  return std::memcmp(row.data, row.data + row.elemSize(), bytes) == 0;
}

/// The lowest row of one colour from `last` upwards to `first`, or -1.
int LowestRowOfOneColour(const Picture& picture, int first, int last) {
  const int stripRows = RowsPerStrip(picture.size);
  for (int end = last + 1; end > first; end -= stripRows) {
    StopIfInterrupted();
    const int begin = std::max(first, end - stripRows);
    const cv::Mat rows = picture.render({0, begin, picture.size.width, end - begin});
    for (int row = end - 1; row >= begin; --row) {
      if (IsOfOneColour(rows.row(row - begin))) {
        return row;
      }
    }
  }
  return -1;
}

int CutFor(const Picture& picture, int top, int mostRows) {
  constexpr int Quarter = 4;
  const int lowest = top + mostRows;
  const int highest = lowest - mostRows / Quarter;
  const int row = LowestRowOfOneColour(picture, std::max(highest - 1, top), lowest);
  return row < 0 ? lowest : std::min(row + 1, lowest);
}

}  // namespace

std::vector<cv::Range> CutIntoPieces(const Picture& picture, int mostRows) {
  std::vector<cv::Range> pieces;
  int top = 0;
  while (picture.size.height - top > mostRows) {
    const int cut = CutFor(picture, top, mostRows);
    pieces.emplace_back(top, cut);
    top = cut;
  }
  pieces.emplace_back(top, picture.size.height);
  return pieces;
}

std::string PieceName(const std::string& path, size_t number) {
  fs::path piece(path);
  const std::string extension = piece.extension().string();
  piece.replace_extension();
  return piece.string() + "-" + std::to_string(number) + extension;
}

}  // namespace ScrollingCapture::Program
