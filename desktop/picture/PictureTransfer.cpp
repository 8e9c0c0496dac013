#include <QFile>
#include <QUrl>
#include <cstdint>
#include <utility>

#include <desktop/picture/PictureFile.h>
#include <desktop/picture/PictureTransfer.h>
#include <desktop/support/Pixels.h>
#include <desktop/support/TemporaryFolder.h>
#include <velscroll/terminal/Failure.h>

namespace ScrollingCapture::Desktop {
namespace {

/// Programs keep several copies of what they take as an image.
constexpr std::int64_t MostImagePixels = 64 << 20;

bool FitsIntoMemory(const cv::Size& size) {
  return std::int64_t{size.width} * size.height <= MostImagePixels;
}

QByteArray BytesOf(const QString& path) {
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) {
    throw Program::Failed("the temporary file cannot be read: " + file.errorString().toStdString());
  }
  return file.readAll();
}

}  // namespace

PictureTransfer::PictureTransfer(SharedPicture shown, QObject* parent)
    : QObject(parent), picture(std::move(shown)) {
  connect(&errand, &Errand::failed, this, &PictureTransfer::failed);
  connect(&errand, &Errand::done, this, [this] {
    isPrepared = true;
    emit ready();
  });
}

void PictureTransfer::prepare() {
  if (isPrepared) {
    emit ready();
  } else if (!errand.isBusy()) {
    errand.start([this] { work(); });
  }
}

void PictureTransfer::work() {
  folder = MakeTemporaryFolder();
  WritePictureFile(*picture, file().toStdString(), Compression::Fast,
                   [this](int /*percent*/) { errand.requireGoingOn(); });
  if (FitsIntoMemory(picture->Size())) {
    encoded = BytesOf(file());
    image = ImageOf(picture->Area({{0, 0}, picture->Size()}));
  }
}

std::unique_ptr<QMimeData> PictureTransfer::mimeData() const {
  auto data = std::make_unique<QMimeData>();
  data->setUrls({QUrl::fromLocalFile(file())});
  if (!image.isNull()) {
    data->setData("image/png", encoded);
    data->setImageData(image);
  }
  return data;
}

QString PictureTransfer::file() const { return folder->filePath("scrolling-capture.png"); }

}  // namespace ScrollingCapture::Desktop
