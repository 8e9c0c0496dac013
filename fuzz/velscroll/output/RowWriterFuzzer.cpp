// Writes any pixels in any format, with any settings and strips: lossless files are read back to
// what was written.

#include <cstdint>

#include <fuzz/support/Expect.h>
#include <fuzz/support/RandomCaptures.h>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>
#include <testkit/MatrixTesting.h>
#include <testkit/output/MemorySink.h>
#include <velscroll/output/RowWriter.h>
#include <velscroll/pixels/Premultiplication.h>

namespace ScrollingCapture::Fuzzing {
namespace {

using Program::PictureFormat;

constexpr int LongestSide = 64;

Program::EncodingSettings AnySettings(FuzzedDataProvider& data) {
  Program::EncodingSettings settings;
  settings.jpegQuality = data.ConsumeIntegralInRange(1, 100);
  settings.pngLevel = data.ConsumeIntegralInRange(0, 9);
  settings.threads = data.ConsumeIntegralInRange(1U, 3U);
  if (data.ConsumeBool()) {
    settings.background = Program::Colour{data.ConsumeIntegral<std::uint8_t>(), 7, 99};
  }
  return settings;
}

void WriteStrips(FuzzedDataProvider& data, Program::RowWriter& writer, const cv::Mat& picture) {
  for (int row = 0; row < picture.rows;) {
    const int count = data.ConsumeIntegralInRange(1, picture.rows - row);
    writer.Write(picture.rowRange(row, row + count));
    row += count;
  }
  writer.Finish();
}

/// What a reader makes of the picture.
cv::Mat Expected(const PictureFormat& format, const Program::EncodingSettings& settings,
                 const cv::Mat& picture, bool opaque) {
  cv::Mat expected;
  if (format.hasAlpha && !opaque && !settings.background) {
    picture.copyTo(expected);
    Program::Unpremultiply(expected);
    cv::cvtColor(expected, expected, cv::COLOR_RGBA2BGRA);
  } else {
    cv::cvtColor(Program::LayOn(settings.background.value_or(Program::White), picture), expected,
                 cv::COLOR_RGB2BGR);
  }
  return expected;
}

void WriteAny(FuzzedDataProvider& data) {
  const auto* const path = data.PickValueInArray({"p.png", "p.tif", "p.bmp", "p.webp", "p.jpg"});
  const PictureFormat& format = Program::PictureFormatOf(path);
  const Program::EncodingSettings settings = AnySettings(data);
  cv::Mat picture = AnyPixels(data, AnySize(data, LongestSide), CV_8UC4);
  Program::Premultiply(picture);
  const bool opaque = Program::IsOpaque(picture);
  Testing::MemorySink sink;
  const auto writer = MakeRowWriter(format, {path, picture.size(), opaque, {}}, settings, sink);
  WriteStrips(data, *writer, picture);
  const cv::Mat read = cv::imdecode(sink.Bytes(), cv::IMREAD_UNCHANGED);
  Expect(read.size() == picture.size(), "what was written is read");
  // OpenCV multiplies with the alpha of a TIFF file.
  const bool readAsItIs = format.kind != PictureFormat::Tiff || read.channels() == 3;
  if (format.kind != PictureFormat::Jpeg && readAsItIs) {
    Expect(Testing::SameBits(read, Expected(format, settings, picture, opaque)),
           "lossless formats keep every pixel");
  }
}

}  // namespace
}  // namespace ScrollingCapture::Fuzzing

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, size_t count) {
  FuzzedDataProvider data(bytes, count);
  ScrollingCapture::Fuzzing::WriteAny(data);
  return 0;
}
