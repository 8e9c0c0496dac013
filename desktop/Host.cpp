#include <QApplication>
#include <QMessageBox>
#include <QScreen>
#include <exception>
#include <utility>

#include <desktop/Host.h>
#include <desktop/support/Explanation.h>
#include <desktop/windows/PanelPlace.h>
#include <velscroll/terminal/Failure.h>

namespace ScrollingCapture::Desktop {
namespace {

/// For windows to vanish from the screen, and for others to be drawn anew.
constexpr int SettlingMilliseconds = 300;

/// The part of a screen that windows may take, in pixels. Only sizes within a screen are scaled.
QRect PixelsOf(const QScreen& screen) {
  const QPoint corner = screen.geometry().topLeft();
  const QRect available = screen.availableGeometry();
  const double ratio = screen.devicePixelRatio();
  return {corner + (available.topLeft() - corner) * ratio, available.size() * ratio};
}

/// Where Qt has a pixel of the screen.
QPoint PositionOf(const QPoint& pixel) {
  for (const QScreen* const screen : QGuiApplication::screens()) {
    const QPoint corner = screen->geometry().topLeft();
    if (PixelsOf(*screen).contains(pixel)) {
      return corner + (pixel - corner) / screen->devicePixelRatio();
    }
  }
  return pixel;
}

bool AskInBox(const QString& notice) {
  return QMessageBox::question(nullptr, QApplication::applicationDisplayName(), notice,
                               QMessageBox::Ok | QMessageBox::Cancel) == QMessageBox::Ok;
}

}  // namespace

Questions DialogQuestions() { return {AskInDialog, AskInBox}; }

Host::Host(Platform offered, Questions asked, QObject* parent)
    : QObject(parent), platform(std::move(offered)), questions(std::move(asked)) {
  settling.setSingleShot(true);
}

/// Pictures in the midst of being saved stop that, and the temporary files of all go with them.
Host::~Host() {
  for (PictureWindow* const picture : pictures) {
    picture->disconnect(this);
  }
  qDeleteAll(pictures);
}

void Host::showStart(const QString& line) {
  if (!startWindow) {
    startWindow = std::make_unique<StartWindow>();
    connect(startWindow.get(), &StartWindow::captureAsked, this,
            [this] { record(platform.pick, startWindow->options()); });
    connect(startWindow.get(), &StartWindow::closed, this, &Host::endWhenNothingIsLeft,
            Qt::QueuedConnection);
  }
  startWindow->say(line);
  startWindow->show();
  startWindow->raise();
}

void Host::record(const PickSource& pick, const RecordingOptions& options) {
  if (recording != nullptr) {
    return;
  }
  if (startWindow) {
    startWindow->hide();
  }
  recording = new Recording(pick, options, this);
  connect(&settling, &QTimer::timeout, recording, &Recording::begin);
  connect(recording, &Recording::opened, this, &Host::beginBeside);
  connect(recording, &Recording::finished, this, &Host::showPicture);
  connect(recording, &Recording::discarded, this,
          [this] { endRecording(Program::WasCancelled, {}); });
  connect(recording, &Recording::failed, this,
          [this](const QString& line) { endRecording(Program::WorkFailed, line); });
  recording->start();
}

void Host::beginBeside(const QRect& region) {
  const cv::Size box = Recording::PreviewBox();
  panel = std::make_unique<Panel>(QSize(box.width, box.height));
  connect(panel.get(), &Panel::finishAsked, recording, &Recording::finish);
  connect(panel.get(), &Panel::discardAsked, recording, &Recording::discard);
  connect(recording, &Recording::progressed, panel.get(), &Panel::showState);
  connect(recording, &Recording::grown, panel.get(), &Panel::showPreview);
  connect(recording, &Recording::stitching, panel.get(), &Panel::showStitching);
  if (placePanel(region)) {
    panel->show();
    begin();
  } else {
    beginBlind();
  }
}

bool Host::placePanel(const QRect& region) {
  QVector<QRect> screens;
  for (const QScreen* const screen : QGuiApplication::screens()) {
    screens << PixelsOf(*screen);
  }
  const std::optional<QPoint> place =
      PlaceOutside(region, panel->size() * panel->devicePixelRatioF(), screens);
  if (place) {
    panel->move(PositionOf(*place));
  }
  return place.has_value();
}

/// A panel in the region would be in the picture.
void Host::beginBlind() {
  try {
    const KeyWasPressed key = platform.listenForKey();
    const QString notice = tr("The region leaves no room for a panel beside it. Press %1 to "
                              "finish the recording.")
                               .arg(platform.finishKey);
    if (questions.beforeRecordingBlind(notice)) {
      recording->listenTo(key);
      begin();
    } else {
      recording->discard();
    }
  } catch (const std::exception&) {
    endRecording(Program::WorkFailed,
                 tr("The region leaves no room for a panel beside it; choose a smaller one (%1)")
                     .arg(Explain(std::current_exception())));
  }
}

void Host::begin() { settling.start(SettlingMilliseconds); }

void Host::showPicture(const Recorded& recorded) {
  dropRecording();
  auto* const window = new PictureWindow(recorded, questions.beforeClosing);
  window->setAttribute(Qt::WA_DeleteOnClose);
  connect(window, &PictureWindow::newCaptureAsked, this, [this] {
    if (recording == nullptr) {
      showStart();
    }
  });
  pictures << window;
  connect(window, &QObject::destroyed, this, [this, window] {
    pictures.removeOne(window);
    endWhenNothingIsLeft();
  });
  window->show();
  window->activateWindow();
}

void Host::endRecording(int status, const QString& line) {
  dropRecording();
  if (startWindow || !pictures.isEmpty()) {
    showStart(line);
  } else {
    emit ended(status, line);
  }
}

/// It may be in the midst of telling its end.
void Host::dropRecording() {
  settling.stop();
  panel.reset();
  std::exchange(recording, nullptr)->deleteLater();
}

void Host::endWhenNothingIsLeft() {
  const bool isStartShown = startWindow && startWindow->isVisible();
  if (pictures.isEmpty() && recording == nullptr && !isStartShown) {
    emit ended(Program::Done, {});
  }
}

}  // namespace ScrollingCapture::Desktop
