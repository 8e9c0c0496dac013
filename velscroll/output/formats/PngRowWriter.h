#pragma once

#include <velscroll/output/RowWriter.h>
#include <velscroll/output/formats/DeflatedBlock.h>
#include <velscroll/output/formats/PngChunks.h>
#include <velscroll/threads/OrderedWork.h>

namespace ScrollingCapture::Program {

/// Writes a PNG file. Blocks of rows are compressed at once on the threads that there are; their
/// bounds depend on the picture's width alone, so that the file is the same for any number of
/// threads and whatever rows come at a time.
class PngRowWriter : public RowWriter {
 public:
  PngRowWriter(const PictureFormat& format, const PictureHeader& header,
               const EncodingSettings& settings, const FilePixels& pixels, OutputSink& sink);

 private:
  void Take(const cv::Mat& rows) override;
  void End() override;

  void AddToBlock(const cv::Mat& rows);
  void CompressBlock(bool last);
  DeflatedBlock Compressed(const cv::Mat& above, const cv::Mat& rows, bool last) const;
  void WriteBlock(DeflatedBlock& block, bool last);

  const FilePixels pixels;
  const int level;
  const int rowsPerBlock;
  PngChunks chunks;
  StreamChecksum checksum;
  bool streamStarted = false;
  cv::Mat above;  ///< the last row of the block before
  cv::Mat block;  ///< room for a whole one
  int blockRows = 0;
  OrderedWork work;  ///< goes first, since it uses the others
};

}  // namespace ScrollingCapture::Program
