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

/// The program's advice is for a command line.
void RequireThatItHolds(const std::string& path, const cv::Size& size) {
  try {
    RequireHolds(PictureFormatOf(path), size, path);
  } catch (const TooLargeForFormat& tooLarge) {
    throw Failed(tooLarge.Reason() + "; save it as PNG");
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
