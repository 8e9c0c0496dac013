#pragma once

#include <velscroll/output/formats/RowEncoder.h>

namespace ScrollingCapture::Program {

/// Writes a BMP file: 24 bits a pixel, the lowest row first, as every program reads it. The rows
/// that come first go to the end of the file.
class BmpEncoder : public RowEncoder {
 public:
  explicit BmpEncoder(const EncodingTask& task);

  void Encode(cv::Mat& pixels) override;
  void End() override {}

 private:
  OutputSink& sink;
  const size_t rowBytes;  ///< with what fills it up to whole words
  int rowsToCome;
};

}  // namespace ScrollingCapture::Program
