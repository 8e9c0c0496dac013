#include <QApplication>
#include <QDrag>
#include <QMouseEvent>
#include <QStyle>

#include <desktop/picture/DragHandle.h>

namespace ScrollingCapture::Desktop {

DragHandle::DragHandle(QWidget* parent) : QLabel(tr("Drag out"), parent) {
  setToolTip(tr("Drag the picture from here into another program"));
  setCursor(Qt::OpenHandCursor);
  setFrameStyle(QFrame::StyledPanel | QFrame::Raised);
  setMargin(4);
}

void DragHandle::setTransfer(PictureTransfer* shown) {
  transfer = shown;
  isDragged = false;
  if (transfer != nullptr) {
    connect(transfer, &PictureTransfer::ready, this, &DragHandle::dragWhenReady);
  }
}

void DragHandle::mousePressEvent(QMouseEvent* event) {
  pressed = event->pos();
  if (transfer != nullptr && event->button() == Qt::LeftButton) {
    transfer->prepare();
  }
}

void DragHandle::mouseMoveEvent(QMouseEvent* event) {
  if (!isDragged &&
      (event->pos() - pressed).manhattanLength() >= QApplication::startDragDistance()) {
    isDragged = true;
    dragWhenReady();
  }
}

void DragHandle::mouseReleaseEvent(QMouseEvent* /*event*/) { isDragged = false; }

/// The drag takes the release of the button.
void DragHandle::dragWhenReady() {
  if (!isDragged || transfer == nullptr || !transfer->isReady()) {
    return;
  }
  isDragged = false;
  auto* const drag = new QDrag(this);
  drag->setMimeData(transfer->mimeData().release());
  drag->setPixmap(window()->windowIcon().pixmap(48));
  drag->exec(Qt::CopyAction);
}

}  // namespace ScrollingCapture::Desktop
