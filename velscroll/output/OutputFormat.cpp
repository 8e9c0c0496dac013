#include <algorithm>
#include <cctype>
#include <filesystem>
#include <limits>

#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>
#include <velscroll/output/OutputFormat.h>
#include <velscroll/pixels/Premultiplication.h>
#include <velscroll/terminal/Failure.h>
#include <velscroll/terminal/Silence.h>

namespace ScrollingCapture::Program {
namespace {

constexpr std::int64_t AnyNumberOfBytes = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t AddressableBy32Bits = std::numeric_limits<std::uint32_t>::max();
constexpr std::int64_t AddressableBy31Bits = std::numeric_limits<std::int32_t>::max();
constexpr std::int64_t HeaderBytes = 65536;

/// Lossless and widespread ones first: that is the order of advice. The limits are those of
/// OpenCV 4.6 and the libraries below it. PNG at level 3 takes about twice as long as with OpenCV's
/// own choice, and makes files of text half as large.
const std::vector<OutputFormat>& Formats() {
  static const std::vector<OutputFormat> formats = {
      {"PNG", {".png"}, 1000000, AnyNumberOfBytes, true, {cv::IMWRITE_PNG_COMPRESSION, 3}},
      {"TIFF",
       {".tif", ".tiff"},
       std::numeric_limits<int>::max(),
       AddressableBy32Bits - HeaderBytes,
       true,
       {}},
      {"BMP",
       {".bmp"},
       std::numeric_limits<int>::max(),
       AddressableBy31Bits - HeaderBytes,
       false,
       {}},
      {"WebP", {".webp"}, 16383, AnyNumberOfBytes, true, {}},
      {"JPEG", {".jpg", ".jpeg"}, 65500, AnyNumberOfBytes, false, {cv::IMWRITE_JPEG_QUALITY, 95}},
  };
  return formats;
}

/// With room for the padding of rows to whole words.
std::int64_t BytesOfPixels(const OutputFormat& format, const cv::Size& size) {
  constexpr std::int64_t MostPadding = 3;
  const std::int64_t channels = format.hasAlpha ? 4 : 3;
  return std::int64_t{size.height} * (std::int64_t{size.width} * channels + MostPadding);
}

bool Fits(const OutputFormat& format, const cv::Size& size) {
  return size.height <= format.longestSide && size.width <= format.longestSide &&
         BytesOfPixels(format, size) <= format.mostBytes;
}

std::string LimitOf(const OutputFormat& format) {
  if (format.longestSide < std::numeric_limits<int>::max()) {
    return std::to_string(format.longestSide) + " rows or columns";
  }
  return std::to_string(format.mostBytes) + " bytes of pixels";
}

std::string Advice(const cv::Size& size) {
  for (const OutputFormat& format : Formats()) {
    if (Fits(format, size)) {
      return std::string("write a ") + format.name + " file (" + format.extensions.front() +
             ") instead";
    }
  }
  return "no format can hold it, so stitch fewer captures at a time";
}

std::string LowerCaseExtension(const std::string& path) {
  std::string extension = std::filesystem::path(path).extension().string();
  std::transform(extension.begin(), extension.end(), extension.begin(),
                 [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
  return extension;
}

/// As OpenCV's encoders take it: blue first, straight alpha, none where all is opaque.
cv::Mat ForFile(const OutputFormat& format, cv::Mat& image) {
  cv::Mat picture;
  if (IsOpaque(image)) {
    cv::cvtColor(image, picture, cv::COLOR_RGBA2BGR);
  } else if (format.hasAlpha) {
    Unpremultiply(image);
    cv::cvtColor(image, picture, cv::COLOR_RGBA2BGRA);
  } else {
    cv::cvtColor(OnWhite(image), picture, cv::COLOR_RGB2BGR);
  }
  return picture;
}

}  // namespace

const OutputFormat& FormatOf(const std::string& path) {
  const std::string extension = LowerCaseExtension(path);
  for (const OutputFormat& format : Formats()) {
    const bool known = std::find(format.extensions.begin(), format.extensions.end(), extension) !=
                       format.extensions.end();
    if (known && cv::haveImageWriter(format.extensions.front())) {
      return format;
    }
  }
  const std::string what =
      extension.empty() ? " has no extension" : " has an extension that stands for no known format";
  throw BadInput("the output file " + Quoted(path) + what + "; use one of " + FormatList());
}

std::string FormatList() {
  std::string list;
  for (const OutputFormat& format : Formats()) {
    for (const char* const extension : format.extensions) {
      list += (list.empty() ? "" : ", ") + std::string(extension);
    }
  }
  return list;
}

void RequireFits(const OutputFormat& format, const cv::Size& size, const std::string& path) {
  if (!Fits(format, size)) {
    throw Failed("cannot write " + Quoted(path) + ": the stitched image has " +
                 std::to_string(size.width) + " x " + std::to_string(size.height) +
                 " pixels, but " + format.name + " holds at most " + LimitOf(format) + "; " +
                 Advice(size));
  }
}

std::vector<unsigned char> Encode(const OutputFormat& format, cv::Mat& image,
                                  const std::string& path) {
  std::vector<unsigned char> file;
  bool encoded = false;
  try {
    const cv::Mat picture = ForFile(format, image);
    const Silence silence;
    encoded = cv::imencode(format.extensions.front(), picture, file, format.encoderSettings);
  } catch (const cv::Exception& error) {
    if (error.code == cv::Error::StsNoMem) {
      throw Failed("not enough memory to write " + Quoted(path));
    }
  }
  if (!encoded || file.empty()) {
    throw Failed("cannot make a " + std::string(format.name) + " file for " + Quoted(path) +
                 "; choose another format: " + FormatList());
  }
  return file;
}

}  // namespace ScrollingCapture::Program
