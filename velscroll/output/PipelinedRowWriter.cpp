#include <utility>

#include <velscroll/output/PipelinedRowWriter.h>

namespace ScrollingCapture::Program {

PipelinedRowWriter::PipelinedRowWriter(const cv::Size& size, const FilePixels& pixels,
                                       std::unique_ptr<RowEncoder> encoder, unsigned int threads)
    : RowWriter(size), pixels(pixels), encoder(std::move(encoder)), work(threads) {}

void PipelinedRowWriter::Take(const cv::Mat& rows) {
  const auto strip = std::make_shared<cv::Mat>(rows);
  work.Add([this, strip] { *strip = pixels.Of(*strip); },
           [this, strip] { encoder->Encode(*strip); });
}

void PipelinedRowWriter::End() {
  work.Finish();
  encoder->End();
}

}  // namespace ScrollingCapture::Program
