#include <algorithm>
#include <memory>

#include <velscroll/output/formats/PngFilter.h>
#include <velscroll/output/formats/PngRowWriter.h>

namespace ScrollingCapture::Program {
namespace {

/// Blocks do not refer to what is in earlier ones. At this size the file gets about one percent
/// larger than with a single block.
int RowsPerBlock(int width, int channels) {
  constexpr std::int64_t BlockBytes = 524288;
  const std::int64_t rows = BlockBytes / (std::int64_t{width} * channels);
  return static_cast<int>(std::max<std::int64_t>(rows, 1));
}

}  // namespace

PngRowWriter::PngRowWriter(const PictureFormat& format, const PictureHeader& header,
                           const EncodingSettings& settings, const FilePixels& pixels,
                           OutputSink& sink)
    : RowWriter(header.size),
      pixels(pixels),
      level(settings.pngLevel),
      rowsPerBlock(
          std::min(RowsPerBlock(header.size.width, pixels.Channels()), header.size.height)),
      chunks(format, header, pixels, sink),
      work(settings.threads) {}

void PngRowWriter::Take(const cv::Mat& rows) {
  const int rowsToCome = RowsToCome() + rows.rows;
  for (int taken = 0; taken < rows.rows;) {
    const int count = std::min(rowsPerBlock - blockRows, rows.rows - taken);
    AddToBlock(rows.rowRange(taken, taken + count));
    taken += count;
    if (blockRows == rowsPerBlock || taken == rowsToCome) {
      CompressBlock(taken == rowsToCome);
    }
  }
}

void PngRowWriter::AddToBlock(const cv::Mat& rows) {
  if (blockRows == 0) {
    block.create(rowsPerBlock, rows.cols, rows.type());
  }
  rows.copyTo(block.rowRange(blockRows, blockRows + rows.rows));
  blockRows += rows.rows;
}

void PngRowWriter::CompressBlock(bool last) {
  const cv::Mat rows = block.rowRange(0, blockRows);
  const auto compressed = std::make_shared<DeflatedBlock>();
  work.Add([this, compressed, before = above, rows,
            last] { *compressed = Compressed(before, rows, last); },
           [this, compressed, last] { WriteBlock(*compressed, last); });
  above = rows.row(blockRows - 1);
  block.release();
  blockRows = 0;
}

DeflatedBlock PngRowWriter::Compressed(const cv::Mat& above, const cv::Mat& rows, bool last) const {
  const cv::Mat before = above.empty() ? cv::Mat() : pixels.Of(above);
  return Deflate(FilterForPng(before, pixels.Of(rows)), level, last);
}

void PngRowWriter::WriteBlock(DeflatedBlock& block, bool last) {
  if (!streamStarted) {
    const std::vector<unsigned char> header = ZlibHeader(level);
    block.bytes.insert(block.bytes.begin(), header.begin(), header.end());
    streamStarted = true;
  }
  checksum.Add(block);
  if (last) {
    const std::vector<unsigned char> trailer = checksum.Trailer();
    block.bytes.insert(block.bytes.end(), trailer.begin(), trailer.end());
  }
  chunks.WritePixels(block.bytes);
}

void PngRowWriter::End() {
  work.Finish();
  chunks.End();
}

}  // namespace ScrollingCapture::Program
