#include <algorithm>
#include <cstdint>
#include <thread>

#include <desktop/picture/PictureFile.h>
#include <velscroll/output/PictureWriting.h>
#include <velscroll/terminal/Failure.h>

namespace ScrollingCapture::Desktop {
namespace {

using namespace Program;

EncodingSettings SettingsFor(Compression compression) {
  constexpr int FastLevel = 1;
  EncodingSettings settings;
  settings.threads = std::max(1U, std::thread::hardware_concurrency());
  if (compression == Compression::Fast) {
    settings.pngLevel = FastLevel;
  }
  return settings;
}

/// What the formats' own message advises is for a command line.
void RequireThatItHolds(const std::string& path, const cv::Size& size) {
  const PictureFormat& format = PictureFormatOf(path);
  try {
    RequireHolds(format, size, path);
  } catch (const Failed&) {
    throw Failed("a picture of " + std::to_string(size.width) + " x " +
                 std::to_string(size.height) + " pixels is too large for " + format.name +
                 "; save it as PNG");
  }
}

}  // namespace

void WritePictureFile(const RecordedPicture& picture, const std::string& path,
                      Compression compression, const HearOfProgress& progress) {
  const cv::Size size = picture.Size();
  RequireThatItHolds(path, size);
  const auto files = StagePicture(
      PictureOf(picture), {path, SettingsFor(compression), {}, {}},
      [&](int rows) { progress(static_cast<int>(std::int64_t{100} * rows / size.height)); });
  for (const auto& file : files) {
    file->Commit();
  }
}

QStringList FormatFilters() {
  return {"PNG (*.png)", "JPEG (*.jpg *.jpeg)", "WebP (*.webp)", "TIFF (*.tif *.tiff)",
          "BMP (*.bmp)"};
}

}  // namespace ScrollingCapture::Desktop
