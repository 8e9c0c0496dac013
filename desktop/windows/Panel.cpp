#include <QCloseEvent>
#include <QHBoxLayout>
#include <QVBoxLayout>

#include <desktop/windows/Panel.h>

namespace ScrollingCapture::Desktop {

Panel::Panel(const QSize& previewBox)
    : QFrame(nullptr, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint),
      previewLabel(new QLabel),
      sizeLabel(new QLabel(tr("Waiting for the first capture…"))),
      warningLabel(new QLabel),
      progress(new QProgressBar),
      finishButton(new QPushButton(tr("Finish"))),
      discardButton(new QPushButton(tr("Discard"))) {
  setAttribute(Qt::WA_ShowWithoutActivating);
  setWindowTitle(tr("Scrolling capture"));
  setFrameStyle(QFrame::Panel | QFrame::Raised);
  previewLabel->setObjectName("preview");
  previewLabel->setFixedSize(previewBox / devicePixelRatioF());
  previewLabel->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
  previewLabel->setStyleSheet("background: black");
  sizeLabel->setObjectName("size");
  warningLabel->setObjectName("warning");
  warningLabel->setWordWrap(true);
  warningLabel->setTextFormat(Qt::PlainText);
  warningLabel->setAlignment(Qt::AlignLeft | Qt::AlignTop);
  warningLabel->setStyleSheet("color: #b00020; font-weight: bold");
  constexpr int WarningLines = 4;
  warningLabel->setFixedHeight(WarningLines * warningLabel->fontMetrics().lineSpacing());
  finishButton->setObjectName("finish");
  discardButton->setObjectName("discard");

  auto* const buttons = new QHBoxLayout;
  buttons->addWidget(finishButton);
  buttons->addWidget(discardButton);
  auto* const layout = new QVBoxLayout(this);
  for (QWidget* const widget :
       {static_cast<QWidget*>(previewLabel), static_cast<QWidget*>(sizeLabel),
        static_cast<QWidget*>(warningLabel), static_cast<QWidget*>(progress)}) {
    layout->addWidget(widget);
  }
  layout->addLayout(buttons);
  setFixedSize(sizeHint());
  progress->setVisible(false);
  connect(finishButton, &QPushButton::clicked, this, &Panel::finishAsked);
  connect(discardButton, &QPushButton::clicked, this, &Panel::discardAsked);
}

void Panel::showPreview(const QImage& image) {
  QPixmap pixmap = QPixmap::fromImage(image);
  pixmap.setDevicePixelRatio(devicePixelRatioF());
  previewLabel->setPixmap(pixmap);
}

void Panel::showState(const QString& sizeWords, const QString& warningWords) {
  sizeLabel->setText(sizeWords);
  warningLabel->setText(warningWords);
}

void Panel::showStitching(int percent) {
  sizeLabel->setText(tr("Stitching…"));
  warningLabel->clear();
  finishButton->setEnabled(false);
  progress->setVisible(true);
  progress->setValue(percent);
}

void Panel::closeEvent(QCloseEvent* event) {
  warningLabel->setText(tr("Finish keeps what was captured, Discard drops it: choose one"));
  event->ignore();
}

}  // namespace ScrollingCapture::Desktop
