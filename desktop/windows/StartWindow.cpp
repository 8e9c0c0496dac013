#include <QCloseEvent>
#include <QVBoxLayout>
#include <array>

#include <desktop/windows/StartWindow.h>

namespace ScrollingCapture::Desktop {
namespace {

using Live::ScrollDirection;

constexpr std::array<ScrollDirection, 4> Directions = {
    ScrollDirection::Down, ScrollDirection::Up, ScrollDirection::Right, ScrollDirection::Left};

}  // namespace

StartWindow::StartWindow(QWidget* parent)
    : QWidget(parent),
      chooseButton(new QPushButton(tr("Choose a window or region…"))),
      scrolling(new QComboBox),
      pointer(new QCheckBox(tr("Show the mouse pointer in the picture"))),
      message(new QLabel) {
  setWindowTitle(tr("Scrolling capture"));
  chooseButton->setObjectName("choose");
  chooseButton->setDefault(true);
  chooseButton->setMinimumHeight(48);
  scrolling->setObjectName("scrolling");
  scrolling->addItems({tr("I scroll by hand"), tr("Scroll down by itself"),
                       tr("Scroll up by itself"), tr("Scroll right by itself"),
                       tr("Scroll left by itself")});
  pointer->setObjectName("pointer");
  message->setObjectName("message");
  message->setWordWrap(true);
  message->setTextFormat(Qt::PlainText);
  auto* const hint = new QLabel(
      tr("Click on a window, or drag a rectangle; Escape cancels. Then scroll: the picture grows "
         "beside it."));
  hint->setWordWrap(true);

  auto* const layout = new QVBoxLayout(this);
  layout->addWidget(chooseButton);
  layout->addWidget(hint);
  layout->addWidget(scrolling);
  layout->addWidget(pointer);
  layout->addStretch();
  layout->addWidget(message);
  setMinimumWidth(380);
  connect(chooseButton, &QPushButton::clicked, this, &StartWindow::captureAsked);
}

RecordingOptions StartWindow::options() const {
  RecordingOptions options;
  options.showsPointer = pointer->isChecked();
  const int direction = scrolling->currentIndex() - 1;
  if (direction >= 0) {
    options.scrollsByItself = Directions.at(static_cast<std::size_t>(direction));
  }
  return options;
}

void StartWindow::say(const QString& line) { message->setText(line); }

void StartWindow::closeEvent(QCloseEvent* event) {
  event->accept();
  emit closed();
}

}  // namespace ScrollingCapture::Desktop
