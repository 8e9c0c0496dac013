#include <algorithm>
#include <filesystem>
#include <limits>

#include <velscroll/names/LowerCase.h>
#include <velscroll/output/PictureFormat.h>
#include <velscroll/output/staging/StagedStandardOutput.h>

namespace ScrollingCapture::Program {
namespace {

constexpr int AnyNumber = std::numeric_limits<int>::max();
constexpr std::int64_t AnyNumberOfBytes = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t AddressableBy31Bits = std::numeric_limits<std::int32_t>::max();
constexpr std::int64_t HeaderBytes = 65536;

/// Lossless and widespread ones first: that is the order of advice. PNG and TIFF hold more rows
/// than most programs read: libpng itself refuses more than a million unless it is told otherwise.
/// JPEG could hold 35 rows more than libjpeg lets it.
const std::vector<PictureFormat>& Formats() {
  static const std::vector<PictureFormat> formats = {
      {PictureFormat::Png, "PNG", {".png"}, AnyNumber, AnyNumberOfBytes, true},
      {PictureFormat::Tiff, "TIFF", {".tif", ".tiff"}, AnyNumber, AnyNumberOfBytes, true},
      {PictureFormat::Bmp, "BMP", {".bmp"}, AnyNumber, AddressableBy31Bits - HeaderBytes, false},
      {PictureFormat::WebP, "WebP", {".webp"}, 16383, AnyNumberOfBytes, true},
      {PictureFormat::Jpeg, "JPEG", {".jpg", ".jpeg"}, 65500, AnyNumberOfBytes, false},
  };
  return formats;
}

/// With room for the padding of rows to whole words.
std::int64_t BytesOfRow(const PictureFormat& format, int width) {
  constexpr std::int64_t MostPadding = 3;
  const std::int64_t channels = format.hasAlpha ? 4 : 3;
  return std::int64_t{width} * channels + MostPadding;
}

/// The most rows of this width that a file can have; 0 when it cannot have any.
int MostRows(const PictureFormat& format, int width) {
  if (width > format.longestSide) {
    return 0;
  }
  const std::int64_t rows = format.mostBytes / BytesOfRow(format, width);
  return static_cast<int>(std::min<std::int64_t>(rows, format.longestSide));
}

bool Holds(const PictureFormat& format, const cv::Size& size) {
  return size.height <= MostRows(format, size.width);
}

std::string LimitOf(const PictureFormat& format) {
  if (format.longestSide < AnyNumber) {
    return std::to_string(format.longestSide) + " rows or columns";
  }
  return std::to_string(format.mostBytes) + " bytes of pixels";
}

std::string Advice(const PictureFormat& format, const cv::Size& size) {
  const int rows = MostRows(format, size.width);
  const std::string split =
      rows > 0 ? "cut it into pieces with --split " + std::to_string(rows) + ", or " : "";
  const auto& formats = Formats();
  const auto other = std::find_if(formats.begin(), formats.end(), [&size](const auto& candidate) {
    return Holds(candidate, size);
  });
  return split + "write a " + other->name + " file (" + other->extensions.front() + ") instead";
}

}  // namespace

const PictureFormat& PictureFormatOf(const std::string& path) {
  if (path == StagedStandardOutput::Argument) {
    return Formats().front();
  }
  const std::string extension = LowerCase(std::filesystem::path(path).extension().string());
  for (const PictureFormat& format : Formats()) {
    if (std::find(format.extensions.begin(), format.extensions.end(), extension) !=
        format.extensions.end()) {
      return format;
    }
  }
  const std::string what =
      extension.empty() ? " has no extension" : " has an extension that stands for no known format";
  throw BadInput("the output file " + Quoted(path) + what + "; use one of " + PictureFormatList());
}

std::string PictureFormatList() {
  std::string list;
  for (const PictureFormat& format : Formats()) {
    for (const char* const extension : format.extensions) {
      list += (list.empty() ? "" : ", ") + std::string(extension);
    }
  }
  return list;
}

void RequireHolds(const PictureFormat& format, const cv::Size& size, const std::string& path) {
  if (!Holds(format, size)) {
    const std::string reason = "an image of " + std::to_string(size.width) + " x " +
                               std::to_string(size.height) + " pixels is too large for " +
                               format.name + ", which holds at most " + LimitOf(format);
    throw TooLargeForFormat(
        "cannot write " + Quoted(path) + ": " + reason + "; " + Advice(format, size), reason,
        MostRows(format, size.width) > 0);
  }
}

}  // namespace ScrollingCapture::Program
