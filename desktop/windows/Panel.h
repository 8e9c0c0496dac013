#pragma once

#include <QFrame>
#include <QImage>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>

namespace ScrollingCapture::Desktop {

/// The small window beside the region while it is recorded: the picture as it grows, how large it
/// is, what is wrong, and the ways to end. It keeps its place and size, and takes no input from the
/// window that is scrolled.
class Panel : public QFrame {
  Q_OBJECT

 public:
  /// @param previewBox the room for the preview, in pixels of the screen
  explicit Panel(const QSize& previewBox);

  void showPreview(const QImage& image);
  void showState(const QString& sizeWords, const QString& warningWords);

  /// From now on the captures are being stitched.
  void showStitching(int percent);

 signals:
  void finishAsked();
  void discardAsked();

 protected:
  /// A panel does not close by itself: it asks to choose between its two ways to end.
  void closeEvent(QCloseEvent* event) override;

 private:
  QLabel* previewLabel;
  QLabel* sizeLabel;
  QLabel* warningLabel;
  QProgressBar* progress;
  QPushButton* finishButton;
  QPushButton* discardButton;
};

}  // namespace ScrollingCapture::Desktop
