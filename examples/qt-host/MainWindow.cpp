#include "MainWindow.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QImageWriter>
#include <QLabel>
#include <QMessageBox>
#include <QPixmap>
#include <QProgressBar>
#include <QPushButton>
#include <QSaveFile>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>

namespace {

constexpr int ViewHeight = 480;
constexpr int PreviewSide = 250;
/// Time for the view to be drawn after it was scrolled.
constexpr int StepMilliseconds = 40;
/// Half of every capture overlaps the next one.
constexpr int Step = ViewHeight / 2;

}  // namespace

MainWindow::MainWindow(QWidget* parent)
    : QWidget(parent),
      view(new QScrollArea),
      page(new DocumentPage),
      preview(new QLabel),
      state(new QLabel("Ready")),
      progressBar(new QProgressBar),
      startButton(new QPushButton("Start")),
      cancelButton(new QPushButton("Cancel")),
      saveButton(new QPushButton("Save…")) {
  setWindowTitle("Scrolling capture");
  view->setWidget(page);
  view->setFrameShape(QFrame::NoFrame);
  view->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  view->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
  view->setFixedSize(page->width() + view->verticalScrollBar()->sizeHint().width(), ViewHeight);
  preview->setFixedSize(PreviewSide, PreviewSide);
  preview->setAlignment(Qt::AlignCenter);
  preview->setStyleSheet("background: black");

  auto* const controls = new QVBoxLayout;
  controls->addWidget(preview);
  controls->addWidget(state);
  controls->addWidget(progressBar);
  controls->addStretch();
  for (QPushButton* const button : {startButton, cancelButton, saveButton}) {
    controls->addWidget(button);
  }
  auto* const layout = new QHBoxLayout(this);
  layout->addWidget(view);
  layout->addLayout(controls);
  showState("Ready", false);

  scrollTimer.setInterval(StepMilliseconds);
  connect(&scrollTimer, &QTimer::timeout, this, &MainWindow::captureAndScroll);
  connect(startButton, &QPushButton::clicked, this, &MainWindow::start);
  connect(cancelButton, &QPushButton::clicked, this, &MainWindow::cancel);
  connect(saveButton, &QPushButton::clicked, this, &MainWindow::askWhereToSave);
}

QImage MainWindow::documentInOnePiece() { return page->grab().toImage(); }

QString MainWindow::save(const QString& file) const {
  QSaveFile output(file);
  if (!output.open(QIODevice::WriteOnly)) {
    return output.errorString();
  }
  QImageWriter writer(&output, QFileInfo(file).suffix().toLatin1());
  if (!writer.write(result)) {
    return writer.errorString();
  }
  return output.commit() ? QString() : output.errorString();
}

void MainWindow::start() {
  run = std::make_unique<CaptureRun>();
  connect(run.get(), &CaptureRun::progressed, this, &MainWindow::showProgress);
  connect(run.get(), &CaptureRun::stitched, this, &MainWindow::showResult);
  connect(run.get(), &CaptureRun::stopped, this, &MainWindow::endWithoutResult);
  grabs = 0;
  cancelled = false;
  result = {};
  view->verticalScrollBar()->setValue(0);
  progressBar->setRange(0, view->verticalScrollBar()->maximum());
  showState("Capturing…", true);
  scrollTimer.start();
}

void MainWindow::cancel() {
  cancelled = true;
  if (scrollTimer.isActive()) {
    scrollTimer.stop();
    endWithoutResult();
  } else if (run) {
    run->cancel();
  }
}

void MainWindow::captureAndScroll() {
  const QString problem = run->add(view->viewport()->grab().toImage());
  state->setText(problem.isEmpty() ? "Capturing…" : problem);
  preview->setPixmap(QPixmap::fromImage(run->preview()));
  QScrollBar* const bar = view->verticalScrollBar();
  progressBar->setValue(bar->value());
  if (bar->value() == bar->maximum()) {
    scrollTimer.stop();
    progressBar->setRange(0, 100);
    showState("Stitching…", true);
    run->stitch();
  }
  bar->setValue(bar->value() + Step);
  emit captured(++grabs);
}

void MainWindow::showProgress(int percent) {
  progressBar->setValue(percent);
  emit stitchProgressed(percent);
}

void MainWindow::showResult(const QImage& image) {
  if (cancelled) {  // the result was on its way already
    endWithoutResult();
    return;
  }
  run.reset();
  result = image;
  showState(QString("%1 × %2 pixels").arg(result.width()).arg(result.height()), false);
  emit finished(Outcome::Stitched);
}

void MainWindow::endWithoutResult() {
  run.reset();
  progressBar->reset();
  showState(cancelled ? "Cancelled" : "The captures could not be stitched", false);
  emit finished(cancelled ? Outcome::Cancelled : Outcome::Failed);
  if (closesWhenFinished) {
    close();
  }
}

void MainWindow::closeEvent(QCloseEvent* event) {
  cancel();
  if (run) {
    closesWhenFinished = true;
    event->ignore();
  }
}

void MainWindow::askWhereToSave() {
  const QString file = QFileDialog::getSaveFileName(this, "Save", "page.png", "Images (*.png)");
  if (file.isEmpty()) {
    return;
  }
  const QString problem = save(file);
  if (!problem.isEmpty()) {
    QMessageBox::warning(this, "Save", problem);
  }
}

void MainWindow::showState(const QString& text, bool busy) {
  state->setText(text);
  startButton->setEnabled(!busy);
  cancelButton->setEnabled(busy);
  saveButton->setEnabled(!busy && !result.isNull());
}
