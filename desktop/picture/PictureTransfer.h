#pragma once

#include <QImage>
#include <QMimeData>
#include <QObject>
#include <QTemporaryDir>
#include <memory>

#include <desktop/picture/RecordedPicture.h>
#include <desktop/support/Errand.h>

namespace ScrollingCapture::Desktop {

/// Gives a picture to other programs: as a temporary PNG file and, where the picture is not too
/// large to be in memory as a whole, as an image. It belongs to the thread of the user interface.
class PictureTransfer : public QObject {
  Q_OBJECT

 public:
  explicit PictureTransfer(SharedPicture shown, QObject* parent = nullptr);

  /// Makes everything ready, unless that is done or under way; ends with one of the signals.
  void prepare();

  bool isReady() const { return isPrepared; }

  /// The picture for the clipboard or for a drag, once everything is ready. The caller owns it.
  std::unique_ptr<QMimeData> mimeData() const;

  /// The temporary file, which goes with this.
  QString file() const;

 signals:
  void ready();
  void failed(const QString& line);

 private:
  void work();

  const SharedPicture picture;
  std::unique_ptr<QTemporaryDir> folder;
  QByteArray encoded;
  QImage image;
  bool isPrepared = false;
  Errand errand;  ///< goes first, since it uses the others
};

}  // namespace ScrollingCapture::Desktop
