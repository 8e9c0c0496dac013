#include <QApplication>
#include <QClipboard>
#include <QCloseEvent>
#include <QDateTime>
#include <QDir>
#include <QFileDialog>
#include <QLocale>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QStatusBar>
#include <QToolBar>
#include <algorithm>
#include <utility>

#include <desktop/picture/PictureFile.h>
#include <desktop/picture/PictureWindow.h>
#include <velscroll/files/SameFile.h>
#include <velscroll/output/Pieces.h>

namespace ScrollingCapture::Desktop {
namespace {

QString DefaultFile() {
  const QString pictures = QStandardPaths::writableLocation(QStandardPaths::PicturesLocation);
  const QString folder = QDir(pictures).exists() ? pictures : QDir::homePath();
  const QString now = QDateTime::currentDateTime().toString("yyyy-MM-dd HHmmss");
  return QDir(folder).filePath("Scrolling capture " + now + ".png");
}

/// The first extension of a filter such as "JPEG (*.jpg *.jpeg)".
QString ExtensionOf(const QString& filter) {
  return filter.section("*.", 1, 1).section(QRegularExpression("[ )]"), 0, 0);
}

}  // namespace

PictureWindow::PictureWindow(const Recorded& recorded, ClosingQuestion asking, QWidget* parent)
    : QMainWindow(parent),
      question(std::move(asking)),
      parts(recorded.parts),
      files(recorded.parts.size()),
      pictureView(new PictureView),
      state(new QLabel),
      progress(new QProgressBar),
      stopButton(new QToolButton),
      dragHandle(new DragHandle) {
  setWindowTitle(tr("Picture") + "[*]");
  setCentralWidget(pictureView);
  addActions();
  addPartChoice();
  showNotes(recorded.notes);
  progress->setMaximumWidth(160);
  progress->setVisible(false);
  stopButton->setText(tr("Stop"));
  stopButton->setVisible(false);
  statusBar()->addPermanentWidget(progress);
  statusBar()->addPermanentWidget(stopButton);
  statusBar()->addPermanentWidget(state);
  connect(stopButton, &QToolButton::clicked, &saving, &Errand::stop);
  connect(&saving, &Errand::done, this, [this] { endSaving(true, {}); });
  connect(&saving, &Errand::stopped, this, [this] { endSaving(false, tr("Not saved: stopped")); });
  connect(&saving, &Errand::failed, this, [this](const QString& line) { endSaving(false, line); });
  connect(pictureView, &PictureView::zoomChanged, this, &PictureWindow::showState);
  connect(pictureView, &PictureView::failed, this, &PictureWindow::say);
  resize(900, 700);
  showPart(0);
}

void PictureWindow::addActions() {
  QToolBar* const bar = addToolBar(tr("Picture"));
  bar->setMovable(false);
  const auto add = [&](const QString& text, const QList<QKeySequence>& keys, const auto& deed) {
    QAction* const action = bar->addAction(text, this, deed);
    action->setShortcuts(keys);
    action->setToolTip(
        keys.isEmpty() ? text : text + " (" + keys[0].toString(QKeySequence::NativeText) + ")");
  };
  add(tr("New"), {QKeySequence::New}, [this] { emit newCaptureAsked(); });
  add(tr("Save As…"), {QKeySequence::Save, QKeySequence::SaveAs}, [this] { askWhereToSave(); });
  add(tr("Copy"), {QKeySequence::Copy}, [this] { copy(); });
  bar->addWidget(dragHandle);
  bar->addSeparator();
  add(tr("Fit"), {QKeySequence("Ctrl+0")}, [this] { pictureView->fitWhole(); });
  add(tr("Width"), {QKeySequence("Ctrl+2")}, [this] { pictureView->fitWidth(); });
  add(tr("100 %"), {QKeySequence("Ctrl+1")}, [this] { pictureView->showActualSize(); });
  add(tr("+"), {QKeySequence::ZoomIn}, [this] { pictureView->zoomIn(); });
  add(tr("−"), {QKeySequence::ZoomOut}, [this] { pictureView->zoomOut(); });
}

void PictureWindow::addPartChoice() {
  if (parts.size() < 2) {
    return;
  }
  QToolBar* const bar = addToolBar(tr("Parts"));
  partChoice = new QComboBox;
  for (std::size_t part = 1; part <= parts.size(); ++part) {
    partChoice->addItem(tr("Part %1 of %2").arg(part).arg(parts.size()));
  }
  connect(partChoice, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
          &PictureWindow::showPart);
  bar->addWidget(partChoice);
}

void PictureWindow::showNotes(const QStringList& notes) {
  if (notes.isEmpty()) {
    return;
  }
  addToolBarBreak();
  QToolBar* const bar = addToolBar(tr("Notes"));
  auto* const label = new QLabel("⚠ " + notes.join("\n⚠ "));
  label->setTextFormat(Qt::PlainText);
  label->setWordWrap(true);
  bar->addWidget(label);
}

void PictureWindow::showPart(int part) {
  shown = part;
  const SharedPicture& picture = parts[static_cast<std::size_t>(part)];
  copiesWhenReady = false;
  dragHandle->setTransfer(nullptr);
  transfer = std::make_unique<PictureTransfer>(picture);
  connect(transfer.get(), &PictureTransfer::failed, this, [this](const QString& line) {
    copiesWhenReady = false;
    say(line);
  });
  connect(transfer.get(), &PictureTransfer::ready, this, [this] {
    if (copiesWhenReady) {
      copiesWhenReady = false;
      QApplication::clipboard()->setMimeData(transfer->mimeData().release());
      say(tr("Copied"));
      emit copied();
    }
  });
  dragHandle->setTransfer(transfer.get());
  pictureView->setPicture(picture);
  showState();
}

void PictureWindow::copy() {
  copiesWhenReady = true;
  say(tr("Copying…"));
  transfer->prepare();
}

void PictureWindow::askWhereToSave() {
  auto* const dialog = new QFileDialog(this, tr("Save As"));
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->setAcceptMode(QFileDialog::AcceptSave);
  dialog->setNameFilters(FormatFilters());
  dialog->setDefaultSuffix(ExtensionOf(FormatFilters().front()));
  dialog->selectFile(suggestedFile());
  connect(dialog, &QFileDialog::filterSelected, dialog,
          [dialog](const QString& filter) { dialog->setDefaultSuffix(ExtensionOf(filter)); });
  connect(dialog, &QFileDialog::fileSelected, this, &PictureWindow::save);
  connect(dialog, &QFileDialog::rejected, this, [this] { closesWhenSaved = false; });
  dialog->open();
}

/// Every part has a file of its own: where the name is another part's, it gets this one's number.
QString PictureWindow::suggestedFile() const {
  const auto part = static_cast<std::size_t>(shown);
  if (!files[part].isEmpty()) {
    return files[part];
  }
  const QString file = chosenFile.isEmpty() ? DefaultFile() : chosenFile;
  return std::count(files.begin(), files.end(), file) == 0
             ? file
             : QString::fromStdString(Program::PieceName(file.toStdString(), part + 1));
}

void PictureWindow::save(const QString& path) {
  if (saving.isBusy()) {
    say(tr("Another file is being saved"));
    return;
  }
  chosenFile = path == suggestedFile() ? chosenFile : path;
  fileBeingSaved = path;
  beingSaved = shown;
  progress->setValue(0);
  progress->setVisible(true);
  stopButton->setVisible(true);
  say(tr("Saving…"));
  const SharedPicture picture = parts[static_cast<std::size_t>(shown)];
  saving.start([this, picture, path] {
    WritePictureFile(*picture, path.toStdString(), Compression::Usual, [this](int percent) {
      saving.requireGoingOn();
      saving.post([this, percent] { progress->setValue(percent); });
    });
  });
}

void PictureWindow::endSaving(bool isWritten, const QString& line) {
  progress->setVisible(false);
  stopButton->setVisible(false);
  const bool closes = std::exchange(closesWhenSaved, false);
  if (!isWritten) {
    say(line);
    emit saveFailed(line);
    return;
  }
  noteSaved();
  showState();
  say(tr("Saved as %1").arg(fileBeingSaved));
  emit saved(fileBeingSaved);
  if (closes) {
    close();
  }
}

/// Another part that was in the same file is lost from it.
void PictureWindow::noteSaved() {
  for (QString& file : files) {
    if (Program::IsSameFile(file.toStdString(), fileBeingSaved.toStdString())) {
      file.clear();
    }
  }
  files[static_cast<std::size_t>(beingSaved)] = fileBeingSaved;
}

void PictureWindow::closeEvent(QCloseEvent* event) {
  if (saving.isBusy()) {
    closesWhenSaved = true;
    say(tr("The window closes when the picture is saved"));
    event->ignore();
    return;
  }
  const ClosingAnswer answer = isSaved() ? ClosingAnswer::Discard : question(this, loss());
  event->setAccepted(answer == ClosingAnswer::Discard);
  if (answer == ClosingAnswer::Save) {
    closesWhenSaved = true;
    showUnsavedPart();
    askWhereToSave();
  }
}

bool PictureWindow::isSaved() const { return countUnsaved() == 0; }

std::size_t PictureWindow::countUnsaved() const {
  return static_cast<std::size_t>(std::count(files.begin(), files.end(), QString()));
}

void PictureWindow::showUnsavedPart() {
  const auto unsaved = std::find(files.begin(), files.end(), QString());
  if (partChoice != nullptr) {
    partChoice->setCurrentIndex(static_cast<int>(unsaved - files.begin()));
  }
}

QString PictureWindow::loss() const {
  return parts.size() == 1 ? tr("The picture is not saved.")
                           : tr("%1 of %2 parts of the picture are not saved.")
                                 .arg(countUnsaved())
                                 .arg(parts.size());
}

void PictureWindow::say(const QString& line) { statusBar()->showMessage(line); }

void PictureWindow::showState() {
  const cv::Size size = parts[static_cast<std::size_t>(shown)]->Size();
  state->setText(tr("%1 × %2 pixels, %3 %")
                     .arg(QLocale().toString(size.width), QLocale().toString(size.height),
                          QLocale().toString(100 * pictureView->zoom(), 'g', 3)));
  setWindowModified(!isSaved());
}

}  // namespace ScrollingCapture::Desktop
