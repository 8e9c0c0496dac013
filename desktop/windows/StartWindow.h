#pragma once

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QWidget>

#include <desktop/recording/CaptureChoice.h>

namespace ScrollingCapture::Desktop {

/// Where everything begins: how to scroll, and the way to choose what to capture.
class StartWindow : public QWidget {
  Q_OBJECT

 public:
  explicit StartWindow(QWidget* parent = nullptr);

  RecordingOptions options() const;

  /// Tells the user how the last recording ended; empty: nothing.
  void say(const QString& line);

 signals:
  void captureAsked();
  void closed();

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  QPushButton* chooseButton;
  QComboBox* scrolling;
  QCheckBox* pointer;
  QLabel* message;
};

}  // namespace ScrollingCapture::Desktop
