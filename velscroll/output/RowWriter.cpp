#include <stdexcept>

#include <velscroll/output/FilePixels.h>
#include <velscroll/output/PipelinedRowWriter.h>
#include <velscroll/output/RowWriter.h>
#include <velscroll/output/formats/BmpEncoder.h>
#include <velscroll/output/formats/JpegEncoder.h>
#include <velscroll/output/formats/PngRowWriter.h>
#include <velscroll/output/formats/TiffEncoder.h>
#include <velscroll/output/formats/WebPEncoder.h>
#include <velscroll/terminal/Failure.h>

namespace ScrollingCapture::Program {
namespace {

std::unique_ptr<RowEncoder> MakeEncoder(const EncodingTask& task) {
  switch (task.format.kind) {
    case PictureFormat::Tiff:
      return std::make_unique<TiffEncoder>(task);
    case PictureFormat::Bmp:
      return std::make_unique<BmpEncoder>(task);
    case PictureFormat::WebP:
      return std::make_unique<WebPEncoder>(task);
    case PictureFormat::Jpeg:
      return std::make_unique<JpegEncoder>(task);
    default:
      throw std::logic_error("a format without an encoder of rows");
  }
}

}  // namespace

void RowWriter::Write(const cv::Mat& rows) {
  if (rows.type() != CV_8UC4 || rows.cols != size.width || rows.rows > RowsToCome()) {
    throw std::logic_error("rows that do not belong to the picture");
  }
  rowsWritten += rows.rows;
  Take(rows);
}

void RowWriter::Finish() {
  if (RowsToCome() > 0) {
    throw std::logic_error("a picture without its last rows");
  }
  End();
}

std::unique_ptr<RowWriter> MakeRowWriter(const PictureFormat& format, const PictureHeader& header,
                                         const EncodingSettings& settings, OutputSink& sink) {
  const FilePixels pixels(format, header, settings);
  if (format.kind == PictureFormat::Png) {
    return std::make_unique<PngRowWriter>(format, header, settings, pixels, sink);
  }
  return std::make_unique<PipelinedRowWriter>(
      header.size, pixels, MakeEncoder({format, header, settings, pixels.Channels(), sink}),
      settings.threads);
}

void ThrowEncodingFailure(const PictureFormat& format, const std::string& name) {
  throw Failed("cannot make a " + std::string(format.name) + " file for " + Quoted(name) +
               "; choose another format: " + PictureFormatList());
}

}  // namespace ScrollingCapture::Program
