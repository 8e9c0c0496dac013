#pragma once

#include <QCloseEvent>
#include <QImage>
#include <QTimer>
#include <QWidget>
#include <memory>

#include "CaptureRun.h"
#include "DocumentPage.h"

class QLabel;
class QProgressBar;
class QPushButton;
class QScrollArea;

/// A document that scrolls by itself while it is captured, the live preview, and the result.
class MainWindow : public QWidget {
  Q_OBJECT

 public:
  /// How a capture ends.
  enum class Outcome { Stitched, Cancelled, Failed };

  explicit MainWindow(QWidget* parent = nullptr);

  /// The whole document in one piece.
  QImage documentInOnePiece();

  /// Writes the result; the format follows the extension. A file that cannot be written whole is
  /// left as it was.
  /// @return what went wrong; empty when nothing did
  QString save(const QString& file) const;

  void start();
  void cancel();

 signals:
  /// A grab was handed over, one of `count` so far.
  void captured(int count);
  void stitchProgressed(int percent);
  /// Each start ends with this.
  void finished(Outcome outcome);

 protected:
  /// Cancels a capture that is under way; the window then closes as soon as that has ended.
  void closeEvent(QCloseEvent* event) override;

 private:
  void captureAndScroll();
  void showProgress(int percent);
  void showResult(const QImage& image);
  void endWithoutResult();
  void askWhereToSave();
  void showState(const QString& text, bool busy);

  QScrollArea* view;
  DocumentPage* page;
  QLabel* preview;
  QLabel* state;
  QProgressBar* progressBar;
  QPushButton* startButton;
  QPushButton* cancelButton;
  QPushButton* saveButton;
  QTimer scrollTimer;
  std::unique_ptr<CaptureRun> run;
  int grabs = 0;
  bool cancelled = false;
  bool closesWhenFinished = false;
  QImage result;
};
