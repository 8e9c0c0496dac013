#pragma once

#include <string>
#include <vector>

#include <velscroll/output/formats/RowEncoder.h>

namespace ScrollingCapture::Program {

/// Writes a lossless WebP file by libwebp, which takes a picture as a whole: its rows are collected
/// first.
class WebPEncoder : public RowEncoder {
 public:
  explicit WebPEncoder(const EncodingTask& task);

  void Encode(cv::Mat& pixels) override;
  void End() override;

 private:
  const PictureFormat& format;
  const std::string name;
  const std::vector<unsigned char> colourProfile;
  OutputSink& sink;
  cv::Mat picture;
  int rowsCollected = 0;
};

}  // namespace ScrollingCapture::Program
