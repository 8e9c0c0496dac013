#include <cmath>
#include <cstdint>
#include <vector>

#include <opencv2/imgproc.hpp>
#include <velscroll/output/formats/BmpEncoder.h>

namespace ScrollingCapture::Program {
namespace {

constexpr std::uint32_t HeaderBytes = 14 + 40;
constexpr int Channels = 3;

/// Numbers with the lowest byte first.
class LittleEndian {
 public:
  void Add(std::uint32_t number, int count) {
    for (int i = 0; i < count; ++i) {
      bytes.push_back(static_cast<unsigned char>(number >> static_cast<unsigned int>(8 * i)));
    }
  }
  const std::vector<unsigned char>& Bytes() const { return bytes; }

 private:
  std::vector<unsigned char> bytes;
};

size_t BytesOfRow(int width) {
  constexpr size_t Word = 4;
  return (size_t{Channels} * static_cast<size_t>(width) + Word - 1) / Word * Word;
}

/// 0 stands for none.
std::uint32_t PixelsPerMetre(double number) {
  return number <= INT32_MAX ? static_cast<std::uint32_t>(std::lround(number)) : 0;
}

/// A file header and a BITMAPINFOHEADER.
std::vector<unsigned char> MakeHeader(const PictureHeader& picture, std::uint32_t pixelBytes) {
  const Resolution resolution = picture.metadata.resolution.value_or(Resolution{0, 0});
  LittleEndian header;
  header.Add('B', 1);
  header.Add('M', 1);
  header.Add(HeaderBytes + pixelBytes, 4);
  header.Add(0, 4);            // reserved
  header.Add(HeaderBytes, 4);  // where the pixels start
  header.Add(40, 4);           // length of what follows
  header.Add(static_cast<std::uint32_t>(picture.size.width), 4);
  header.Add(static_cast<std::uint32_t>(picture.size.height), 4);
  header.Add(1, 2);             // planes
  header.Add(8 * Channels, 2);  // bits a pixel
  header.Add(0, 4);             // not compressed
  header.Add(pixelBytes, 4);
  header.Add(PixelsPerMetre(resolution.horizontal), 4);
  header.Add(PixelsPerMetre(resolution.vertical), 4);
  header.Add(0, 4);  // colours of a palette
  header.Add(0, 4);  // important ones of them
  return header.Bytes();
}

}  // namespace

BmpEncoder::BmpEncoder(const EncodingTask& task)
    : sink(task.sink),
      rowBytes(BytesOfRow(task.header.size.width)),
      rowsToCome(task.header.size.height) {
  const auto pixelBytes = static_cast<std::uint32_t>(rowBytes * static_cast<size_t>(rowsToCome));
  const std::vector<unsigned char> header = MakeHeader(task.header, pixelBytes);
  sink.Append(header.data(), header.size());
}

void BmpEncoder::Encode(cv::Mat& pixels) {
  cv::Mat padded(pixels.rows, static_cast<int>(rowBytes), CV_8UC1, cv::Scalar(0));
  for (int row = 0; row < pixels.rows; ++row) {
    const cv::Mat from = pixels.row(row);
    cv::Mat to(1, pixels.cols, CV_8UC3, padded.ptr(pixels.rows - 1 - row));
    cv::cvtColor(from, to, cv::COLOR_RGB2BGR);
  }
  rowsToCome -= pixels.rows;
  sink.WriteAt(HeaderBytes + rowBytes * static_cast<size_t>(rowsToCome), padded.data,
               rowBytes * static_cast<size_t>(pixels.rows));
}

}  // namespace ScrollingCapture::Program
