#pragma once

#include <QObject>
#include <QString>
#include <QTimer>
#include <QVector>
#include <functional>
#include <memory>

#include <desktop/picture/ClosingQuestion.h>
#include <desktop/picture/PictureWindow.h>
#include <desktop/recording/CaptureChoice.h>
#include <desktop/recording/Recording.h>
#include <desktop/windows/Panel.h>
#include <desktop/windows/StartWindow.h>

namespace ScrollingCapture::Desktop {

/// What the user is asked in between.
struct Questions {
  ClosingQuestion beforeClosing;

  /// Whether to record without a panel, for which there is no room.
  std::function<bool(const QString& notice)> beforeRecordingBlind;
};

/// Questions in dialogs.
Questions DialogQuestions();

/// Leads from the choice by way of the recording to the picture, one recording at a time.
class Host : public QObject {
  Q_OBJECT

 public:
  Host(Platform offered, Questions asked, QObject* parent = nullptr);
  ~Host() override;

  /// Lets the user begin. Must not be called while something is recorded.
  /// @param line how the last recording ended; empty: nothing
  void showStart(const QString& line = {});

  /// Records at once. Where that comes to nothing, and the start was never shown, this is the end.
  void record(const PickSource& pick, const RecordingOptions& options);

 signals:
  /// Nothing is left to do.
  /// @param status for the shell: see Program::ExitStatus
  /// @param line   what went wrong, mostly empty
  void ended(int status, const QString& line);

 private:
  void beginBeside(const QRect& region);
  bool placePanel(const QRect& region);
  void beginBlind();
  void begin();
  void showPicture(const Recorded& recorded);
  void endRecording(int status, const QString& line);
  void dropRecording();
  void endWhenNothingIsLeft();

  const Platform platform;
  const Questions questions;
  std::unique_ptr<StartWindow> startWindow;  ///< once it was shown
  std::unique_ptr<Panel> panel;              ///< while something is recorded
  Recording* recording = nullptr;            ///< likewise
  QTimer settling;                           ///< before the recording begins
  QVector<PictureWindow*> pictures;          ///< open ones, which may delete themselves
};

}  // namespace ScrollingCapture::Desktop
