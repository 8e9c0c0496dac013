#pragma once

#include <QComboBox>
#include <QLabel>
#include <QMainWindow>
#include <QProgressBar>
#include <QToolButton>
#include <memory>
#include <vector>

#include <desktop/picture/ClosingQuestion.h>
#include <desktop/picture/DragHandle.h>
#include <desktop/picture/PictureTransfer.h>
#include <desktop/picture/PictureView.h>
#include <desktop/picture/RecordedPicture.h>
#include <desktop/support/Errand.h>

namespace ScrollingCapture::Desktop {

/// Shows what was recorded, saves it, copies it and lets it be dragged out.
class PictureWindow : public QMainWindow {
  Q_OBJECT

 public:
  /// @param recorded with at least one part
  PictureWindow(const Recorded& recorded, ClosingQuestion asking, QWidget* parent = nullptr);

  /// Writes the part that is shown into a file, on another thread; ends with the signal saved or
  /// with saveFailed.
  void save(const QString& path);

  /// Puts the part that is shown on the clipboard, on another thread as far as it takes time.
  void copy();

  /// Shows another part.
  /// @param part from 0
  void showPart(int part);

  PictureView* view() const { return pictureView; }
  bool isSaved() const;

 signals:
  void saved(const QString& path);
  void saveFailed(const QString& line);
  void copied();
  void newCaptureAsked();

 protected:
  /// Asks when something is not saved, and waits until what is being saved is.
  void closeEvent(QCloseEvent* event) override;

 private:
  void addActions();
  void addPartChoice();
  void showNotes(const QStringList& notes);
  void askWhereToSave();
  QString suggestedFile() const;
  void endSaving(bool isWritten, const QString& line);
  void noteSaved();
  void showUnsavedPart();
  void say(const QString& line);
  void showState();
  QString loss() const;
  std::size_t countUnsaved() const;

  const ClosingQuestion question;
  const std::vector<SharedPicture> parts;
  std::vector<QString> files;  ///< that the parts are saved in; empty: not saved
  int shown = 0;
  int beingSaved = 0;
  QString fileBeingSaved;
  QString chosenFile;  ///< by the user last, instead of what was suggested
  bool closesWhenSaved = false;
  bool copiesWhenReady = false;
  PictureView* pictureView;
  QComboBox* partChoice = nullptr;  ///< where there are several
  QLabel* state;
  QProgressBar* progress;
  QToolButton* stopButton;
  DragHandle* dragHandle;
  std::unique_ptr<PictureTransfer> transfer;
  Errand saving;  ///< goes first, since it uses the others
};

}  // namespace ScrollingCapture::Desktop
