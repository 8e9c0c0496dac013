#pragma once

#include <memory>

#include <velscroll/output/FilePixels.h>
#include <velscroll/output/RowWriter.h>
#include <velscroll/output/formats/RowEncoder.h>
#include <velscroll/threads/OrderedWork.h>

namespace ScrollingCapture::Program {

/// Has rows converted and encoded beside the thread that brings them.
class PipelinedRowWriter : public RowWriter {
 public:
  PipelinedRowWriter(const cv::Size& size, const FilePixels& pixels,
                     std::unique_ptr<RowEncoder> encoder, unsigned int threads);

 private:
  void Take(const cv::Mat& rows) override;
  void End() override;

  const FilePixels pixels;
  const std::unique_ptr<RowEncoder> encoder;
  OrderedWork work;  ///< goes first, since it uses the others
};

}  // namespace ScrollingCapture::Program
